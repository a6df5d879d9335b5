#include "common/read_double.h"

#include <QRandomGenerator>
#include <QtTest>

#include <cstring>

namespace
{
quint64 bits(double value)
{
    quint64 pattern = 0;
    std::memcpy(&pattern, &value, sizeof pattern);
    return pattern;
}

/** Whether both ways agree, down to the sign of a zero. */
bool reads_like_the_toolkit(const QString& text)
{
    bool ok = false;
    bool expected_ok = false;
    const double value = read_double(text.constData(), text.size(), ok);
    const double expected = text.toDouble(&expected_ok);
    return ok == expected_ok && bits(value) == bits(expected);
}
}  // namespace

class ReadDoubleTest : public QObject
{
    Q_OBJECT

private slots:
    void every_form_reads_like_the_toolkit_data();
    void every_form_reads_like_the_toolkit();
    void decimals_read_like_the_toolkit();
    void only_the_given_characters_are_read();
};

void ReadDoubleTest::every_form_reads_like_the_toolkit_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"",
                             "0",
                             "-0",
                             "-0.00",
                             "0.0",
                             "1",
                             "-1",
                             "+1",
                             "48.02",
                             "-3.1",
                             "007.50",
                             ".5",
                             "-.5",
                             "5.",
                             "-5.",
                             ".",
                             "-",
                             "-.",
                             "--1",
                             "- 1",
                             "1-",
                             "1.2.3",
                             "1..2",
                             "48,02",
                             "1,000.5",
                             " 1.5",
                             "1.5 ",
                             "\t1.5\n",
                             "1 .5",
                             "1e5",
                             "1E-5",
                             "1e",
                             "1e308",
                             "1e400",
                             "-1e400",
                             "1e-400",
                             "4.9e-324",
                             "inf",
                             "-inf",
                             "+inf",
                             "Inf",
                             "nan",
                             "NaN",
                             "-nan",
                             "infinity",
                             "0x10",
                             "1_000",
                             "12abc",
                             "999999999999999",
                             "-999999999999999",
                             "1000000000000000",
                             "9007199254740993",
                             "0.999999999999999",
                             ".999999999999999",
                             "0.1234567890123456",
                             "123456789.123456",
                             "12345678.12345678",
                             "000000000000000000001",
                             "0.000000000000001",
                             "0.0000000000000001",
                             "2.2250738585072011e-308",
                             "1.7976931348623157e308",
                             "/",
                             ":",
                             "\xD9\xA1",
                             "\xC2\xA0"
                             "1.5",
                             "1.5V"})
        QTest::newRow(qPrintable(QString("<%1>").arg(text))) << QString::fromUtf8(text);
}

void ReadDoubleTest::every_form_reads_like_the_toolkit()
{
    QFETCH(QString, text);
    QVERIFY(reads_like_the_toolkit(text));
}

void ReadDoubleTest::decimals_read_like_the_toolkit()
{
    QRandomGenerator random(2020);
    for (int round = 0; round < 100000; ++round) {
        const int whole_digits = random.bounded(1, 10);
        const int decimals = random.bounded(0, 9);
        QString text = random.bounded(2) == 0 ? "" : "-";
        for (int digit = 0; digit < whole_digits; ++digit)
            text += QChar('0' + random.bounded(10));
        if (decimals > 0)
            text += '.';
        for (int digit = 0; digit < decimals; ++digit)
            text += QChar('0' + random.bounded(10));
        QVERIFY2(reads_like_the_toolkit(text), qPrintable(text));
    }
}

void ReadDoubleTest::only_the_given_characters_are_read()
{
    const QString text = "x48.025";
    bool ok = false;
    QCOMPARE(read_double(text.constData() + 1, 5, ok), 48.02);
    QVERIFY(ok);
    QCOMPARE(read_double(text.constData(), 5, ok), 0.0);
    QVERIFY(!ok);
}

QTEST_GUILESS_MAIN(ReadDoubleTest)
#include "tst_read_double.moc"
