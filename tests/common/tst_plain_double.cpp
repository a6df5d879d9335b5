#include "common/plain_double.h"
#include "support/test_program.h"

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

/** Whether the number at the start is the toolkit's, down to the sign of a zero. */
bool reads_like_the_toolkit(const QString& text, int expected_length)
{
    double value = 99.0;
    const QChar* const begin = text.constData();
    const QChar* const end = read_plain_double(begin, begin + text.size(), value);
    if (expected_length == 0)
        return end == nullptr && bits(value) == bits(99.0);
    bool ok = false;
    const double expected = text.left(expected_length).toDouble(&ok);
    return ok && end == begin + expected_length && bits(value) == bits(expected);
}
}  // namespace

class PlainDoubleTest : public QObject
{
    Q_OBJECT

private slots:
    void plain_numbers_are_read_to_their_end_data();
    void plain_numbers_are_read_to_their_end();
    void other_forms_are_left_to_the_toolkit_data();
    void other_forms_are_left_to_the_toolkit();
    void decimals_read_like_the_toolkit();
    void nothing_behind_the_end_is_read();
};

void PlainDoubleTest::plain_numbers_are_read_to_their_end_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("length");
    const auto row = [](const char* text, int length) {
        QTest::newRow(qPrintable(QString("<%1>").arg(text))) << QString(text) << length;
    };
    for (const char* text : {"0", "-0", "-0.00", "0.0", "1", "-1", "48.02", "-3.1", "007.50", "0.1",
                             "0.3", "999999999999999", "-999999999999999", "0.99999999999999",
                             "0.00000000000001", "123456789.123456", "8.98846567431158"})
        row(text, int(std::strlen(text)));
    row("48.02\tx", 5);
    row("48,02", 2);
    row("1.2.3", 3);
    row("1-", 1);
    row("1e5", 1);
    row("0x10", 1);
    row("1 ", 1);
    row("7/", 1);
    row("7:", 1);
}

void PlainDoubleTest::plain_numbers_are_read_to_their_end()
{
    QFETCH(QString, text);
    QFETCH(int, length);
    QVERIFY(reads_like_the_toolkit(text, length));
}

void PlainDoubleTest::other_forms_are_left_to_the_toolkit_data()
{
    QTest::addColumn<QString>("text");
    for (const char* text : {"",
                             "-",
                             ".",
                             "-.",
                             "+1",
                             ".5",
                             "-.5",
                             "5.",
                             "-5.",
                             "1..2",
                             "--1",
                             "- 1",
                             " 1",
                             "inf",
                             "nan",
                             "x",
                             "1000000000000000",
                             "0.123456789012345",
                             "12345678.12345678",
                             "000000000000000000001",
                             "99999999999999999999999",
                             "\xD9\xA1"})
        QTest::newRow(qPrintable(QString("<%1>").arg(text))) << QString::fromUtf8(text);
}

void PlainDoubleTest::other_forms_are_left_to_the_toolkit()
{
    QFETCH(QString, text);
    QVERIFY(reads_like_the_toolkit(text, 0));
}

void PlainDoubleTest::decimals_read_like_the_toolkit()
{
    QRandomGenerator random(2020);
    for (int round = 0; round < 100000; ++round) {
        const int whole_digits = random.bounded(1, 10);
        const int decimals = random.bounded(0, 7);
        QString text = random.bounded(2) == 0 ? "" : "-";
        for (int digit = 0; digit < whole_digits; ++digit)
            text += QChar('0' + random.bounded(10));
        if (decimals > 0)
            text += '.';
        for (int digit = 0; digit < decimals; ++digit)
            text += QChar('0' + random.bounded(10));
        QVERIFY2(reads_like_the_toolkit(text, text.size()), qPrintable(text));
    }
}

void PlainDoubleTest::nothing_behind_the_end_is_read()
{
    const QString text = "48.025";
    const QChar* const begin = text.constData();
    double value = 0.0;
    QVERIFY(read_plain_double(begin, begin + 5, value) == begin + 5);
    QCOMPARE(value, 48.02);
    QVERIFY(read_plain_double(begin, begin + 2, value) == begin + 2);
    QCOMPARE(value, 48.0);
    QVERIFY(read_plain_double(begin, begin + 3, value) == nullptr);
    QVERIFY(read_plain_double(begin, begin, value) == nullptr);
}

KEST_GUILESS_TEST(PlainDoubleTest)
#include "tst_plain_double.moc"
