#include "station/logs/log_row.h"
#include "support/read_log.h"
#include "support/test_program.h"

#include <QtTest>

#include <random>

/** Rows in one walk and numbers to the bit. */
class LogRowTest : public QObject
{
    Q_OBJECT

private slots:
    void a_plain_row_is_read_in_one_walk_data();
    void a_plain_row_is_read_in_one_walk();
    void every_number_is_the_toolkits_to_the_bit_data();
    void every_number_is_the_toolkits_to_the_bit();
    void every_random_number_is_the_toolkits_to_the_bit();
    void a_failed_number_touches_nothing();
};

namespace
{
/** The five numbers of a row by way of a whole log, so that every form of a row is tried. */
bool toolkit_and_reader_agree(const QByteArray& text)
{
    bool ok = false;
    const double expected = QString::fromUtf8(text.constData(), text.size()).toDouble(&ok);
    const QByteArray row = "0,1," + text + "," + text + "," + text + "\n";
    const ReadLog log("Kestrometer Log\nDischarge Number: 1\n" + row);
    if (log.accepted != ok)
        return false;
    if (!ok)
        return true;
    const ReadCycle& cycle = log.cycle(0);
    return same_bits(cycle.voltage_vs_amphours.points[0].y(), expected) &&
           same_bits(cycle.current_vs_amphours.points[0].y(), expected) &&
           same_bits(cycle.internal_resistance.points[0].y(), expected * 1000.0);
}

QByteArray random_digits(std::mt19937& random, int most)
{
    QByteArray digits;
    for (int count = int(random() % unsigned(most + 1)); count > 0; --count)
        digits += char('0' + random() % 10);
    return digits;
}

/** A sign, digits, a point, digits and an exponent, each or none of them. */
QByteArray random_number(std::mt19937& random)
{
    static const char* const SIGNS[] = {"", "", "", "-", "+"};
    static const char* const EXPONENTS[] = {"", "", "", "", "e", "E-", "e+"};
    const QByteArray exponent = EXPONENTS[random() % 7];
    return QByteArray(SIGNS[random() % 5]) + random_digits(random, 12) +
           (random() % 3 == 0 ? "" : ".") + random_digits(random, 12) + exponent +
           (exponent.isEmpty() ? QByteArray() : QByteArray::number(int(random() % 400)));
}
}  // namespace

void LogRowTest::a_plain_row_is_read_in_one_walk_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("columns");
    QTest::newRow("four") << QString("1.0,0.003,40.97,9.98") << 4;
    QTest::newRow("five") << QString("1.0,0.003,40.97,9.98,0.014") << 5;
    QTest::newRow("negative") << QString("-1,-2,-3,-4,-5") << 5;
    QTest::newRow("three") << QString("1.0,0.003,40.97") << 0;
    QTest::newRow("six") << QString("1,2,3,4,5,6") << 0;
    QTest::newRow("an empty column") << QString("1,,3,4") << 0;
    QTest::newRow("a comma at the end") << QString("1,2,3,4,") << 0;
    QTest::newRow("another separator") << QString("1\t2\t3\t4") << 0;
    QTest::newRow("an exponent is unusual") << QString("1,2,3,4e0") << 0;
    QTest::newRow("sixteen digits are unusual") << QString("1,2,3,4.000000000000000") << 0;
    QTest::newRow("nothing") << QString() << 0;
}

void LogRowTest::a_plain_row_is_read_in_one_walk()
{
    QFETCH(QString, line);
    QFETCH(int, columns);
    LogRow row;
    QCOMPARE(read_plain_row(line, ',', row), columns != 0);
    if (columns == 0)
        return;
    const QStringList fields = line.split(',');
    LogRow expected;
    QCOMPARE(read_columns(fields, expected), columns);
    QVERIFY(same_bits(row.time, expected.time));
    QVERIFY(same_bits(row.amp_hours, expected.amp_hours));
    QVERIFY(same_bits(row.voltage, expected.voltage));
    QVERIFY(same_bits(row.current, expected.current));
    QCOMPARE(row.has_resistance, columns == 5);
    if (columns == 5)
        QVERIFY(same_bits(row.resistance, expected.resistance));
}

void LogRowTest::every_number_is_the_toolkits_to_the_bit_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"0",
                             "-0",
                             "0.0",
                             "-0.0",
                             "00012.50",
                             "1",
                             "-1",
                             "+1",
                             "0.1",
                             "0.3",
                             "2.675",
                             "1.005",
                             "40.97",
                             "123456.789",
                             "999999999999999",
                             "9999999999999999",
                             "99999999999999999999",
                             "0.000000000000001",
                             "0.0000000000000001",
                             "123456789012345",
                             "1234567890123456",
                             "1.23456789012345",
                             "1.234567890123456",
                             "9007199254740993",
                             "9007199254740992.5",
                             "179769313486231570000000000000000000000",
                             "1e308",
                             "1.7976931348623157e308",
                             "1.7976931348623159e308",
                             "1e309",
                             "-1e309",
                             "4.9e-324",
                             "2.4e-324",
                             "2.5e-324",
                             "2.2250738585072011e-308",
                             "2.2250738585072014e-308",
                             "1e-400",
                             "1e",
                             "1e+",
                             "e5",
                             "1e5",
                             "1E5",
                             "1e+05",
                             "1e-05",
                             ".",
                             "-",
                             "+",
                             "-.",
                             ".5",
                             "-.5",
                             "5.",
                             "-5.",
                             "",
                             " ",
                             " 1",
                             "1 ",
                             "\t1",
                             "1 2",
                             "--1",
                             "+-1",
                             "1.2.3",
                             "1..2",
                             "inf",
                             "-inf",
                             "+inf",
                             "INF",
                             "infinity",
                             "nan",
                             "NaN",
                             "-nan",
                             "0x10",
                             "0b1",
                             "1f",
                             "1d",
                             "1_000",
                             "1'000",
                             "\xd9\xa1\xd9\xa2",
                             "\xef\xbc\x91",
                             "\xe2\x88\x92"
                             "1",
                             "1\xc2\xa0",
                             "\xc2\xa0"
                             "1",
                             "0.1e1",
                             "00",
                             "-00.00"})
        QTest::newRow(qPrintable(QString("'%1'").arg(text))) << QByteArray(text);
    QTest::newRow("a thousand digits") << QByteArray(1000, '7');
    QTest::newRow("a thousand decimals") << QByteArray("0.") + QByteArray(1000, '3');
    QTest::newRow("a thousand zeros and a one") << QByteArray(1000, '0') + "1";
    QTest::newRow("a zero byte") << QByteArray("1\0", 2);
    QTest::newRow("a zero byte within") << QByteArray("1\0002", 3);
}

void LogRowTest::every_number_is_the_toolkits_to_the_bit()
{
    QFETCH(QByteArray, text);
    QVERIFY(toolkit_and_reader_agree(text));
}

void LogRowTest::every_random_number_is_the_toolkits_to_the_bit()
{
    std::mt19937 random(6);
    for (int i = 0; i < 50000; ++i) {
        const QByteArray text = random_number(random);
        QVERIFY2(toolkit_and_reader_agree(text), text.constData());
    }
}

void LogRowTest::a_failed_number_touches_nothing()
{
    double value = 1.5;
    QVERIFY(!read_number("x", value));
    QVERIFY(!read_number("1e999", value));
    QCOMPARE(value, 1.5);
}

KEST_GUILESS_TEST(LogRowTest)
#include "tst_log_row.moc"
