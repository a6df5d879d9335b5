#include "common/number_row.h"
#include "support/test_program.h"

#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace
{
constexpr int MOST_DECIMALS = 5;  // two more than go the short way

/** Compares with the toolkit; the value stands in the message with all its digits. */
bool agrees(double value)
{
    for (int decimals = 0; decimals <= MOST_DECIMALS; ++decimals) {
        if (fixed_decimal(value, decimals) == QString::number(value, 'f', decimals))
            continue;
        qWarning("%.17g with %d decimals: %s, not %s", value, decimals,
                 qPrintable(fixed_decimal(value, decimals)),
                 qPrintable(QString::number(value, 'f', decimals)));
        return false;
    }
    return true;
}

double double_of_bits(quint64 bits)
{
    double value = 0.0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}
}  // namespace

class NumberRowTest : public QObject
{
    Q_OBJECT

private slots:
    void a_number_is_written_as_the_toolkit_writes_it_data();
    void a_number_is_written_as_the_toolkit_writes_it();
    void numbers_are_put_in_front_of_what_is_there();
    void five_of_the_longest_numbers_fit_in_a_row();
    void numbers_of_every_size_are_written_as_the_toolkit_writes_them();
    void doubles_of_any_bits_are_written_as_the_toolkit_writes_them();
    void halves_and_their_neighbours_are_written_as_the_toolkit_writes_them();
};

void NumberRowTest::a_number_is_written_as_the_toolkit_writes_it_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QString>("text");

    QTest::newRow("volts") << 41.5 << 2 << "41.50";
    QTest::newRow("a whole number") << 3.0 << 0 << "3";
    QTest::newRow("zero") << 0.0 << 2 << "0.00";
    QTest::newRow("a negative zero") << -0.0 << 1 << QString::number(-0.0, 'f', 1);
    QTest::newRow("a half goes up") << 0.5 << 0 << QString::number(0.5, 'f', 0);
    QTest::newRow("a half of the last place") << 0.125 << 2 << QString::number(0.125, 'f', 2);
    QTest::newRow("just below a half") << 1.005 << 2 << "1.00";
    QTest::newRow("a carry into a new digit") << 999.9996 << 3 << "1000.000";
    QTest::newRow("negative") << -3.14159 << 3 << "-3.142";
    QTest::newRow("negative, rounded to zero") << -0.0001 << 3 << QString::number(-0.0001, 'f', 3);
    QTest::newRow("too small to count") << 1e-300 << 3 << "0.000";
    add_row("the largest of the short way", 4503599627370495.5, 1, "4503599627370495.5");
    add_row("the smallest of the toolkit's", 4503599627370496.0, 1, "4503599627370496.0");
    QTest::newRow("more decimals") << 1.23456789 << 5 << "1.23457";
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 2 << "inf";
    QTest::newRow("negative infinite") << -std::numeric_limits<double>::infinity() << 2 << "-inf";
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 2 << "nan";
}

void NumberRowTest::a_number_is_written_as_the_toolkit_writes_it()
{
    QFETCH(double, value);
    QFETCH(int, decimals);
    QFETCH(QString, text);
    QCOMPARE(fixed_decimal(value, decimals), text);
    QVERIFY(agrees(value));
}

void NumberRowTest::numbers_are_put_in_front_of_what_is_there()
{
    NumberRow row;
    QCOMPARE(row.view().toString(), QString());
    row.prepend('\n');
    row.prepend_fixed(41.523, 2);
    row.prepend(',');
    row.prepend_fixed(-12.0, 1);
    QCOMPARE(row.view().toString(), QString("-12.0,41.52\n"));
}

void NumberRowTest::five_of_the_longest_numbers_fit_in_a_row()
{
    const double longest = -std::numeric_limits<double>::max();
    NumberRow row;
    QString text;
    for (int i = 0; i < 5; ++i) {
        row.prepend(',');
        row.prepend_fixed(longest, 3);
        text += QString::number(longest, 'f', 3) + ',';
    }
    QCOMPARE(row.view().toString(), text);
}

void NumberRowTest::numbers_of_every_size_are_written_as_the_toolkit_writes_them()
{
    std::mt19937_64 random(20200403);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    for (int exponent = -80; exponent <= 80; ++exponent)
        for (int i = 0; i < 200; ++i)
            QVERIFY(agrees(std::ldexp(mantissa(random), exponent)));
}

void NumberRowTest::doubles_of_any_bits_are_written_as_the_toolkit_writes_them()
{
    std::mt19937_64 random(915);
    for (int i = 0; i < 3000; ++i)
        QVERIFY(agrees(double_of_bits(random())));
}

void NumberRowTest::halves_and_their_neighbours_are_written_as_the_toolkit_writes_them()
{
    std::mt19937_64 random(1042);
    for (const double scale : {1.0, 10.0, 100.0, 1000.0, 16.0, 2048.0}) {
        for (int i = 0; i < 2000; ++i) {
            const double half = (double(random() >> (20 + i % 40)) + 0.5) / scale;
            for (const double value :
                 {half, std::nextafter(half, 0.0), std::nextafter(half, 1e300)}) {
                QVERIFY(agrees(value));
                QVERIFY(agrees(-value));
            }
        }
    }
}

KEST_GUILESS_TEST(NumberRowTest)
#include "tst_number_row.moc"
