#include "common/time_span.h"
#include "support/test_program.h"

#include <QtTest>

class TimeSpanTest : public QObject
{
    Q_OBJECT

private slots:
    void a_span_shows_its_pieces_from_the_first_that_counts_data();
    void a_span_shows_its_pieces_from_the_first_that_counts();
};

void TimeSpanTest::a_span_shows_its_pieces_from_the_first_that_counts_data()
{
    QTest::addColumn<qint64>("seconds");
    QTest::addColumn<QString>("text");

    QTest::newRow("zero") << qint64(0) << "00s";
    QTest::newRow("seconds") << qint64(9) << "09s";
    QTest::newRow("last second of the first minute") << qint64(59) << "59s";
    QTest::newRow("a minute") << qint64(60) << "01m 00s";
    QTest::newRow("minutes") << qint64(309) << "05m 09s";
    QTest::newRow("last second of the first hour") << qint64(3599) << "59m 59s";
    QTest::newRow("an hour") << qint64(3600) << "01h 00m 00s";
    QTest::newRow("hours") << qint64(11109) << "03h 05m 09s";
    QTest::newRow("last second of the first day") << qint64(86399) << "23h 59m 59s";
    QTest::newRow("a day") << qint64(86400) << "1d 00h 00m 00s";
    QTest::newRow("days are not padded") << qint64(12 * 86400 + 1) << "12d 00h 00m 01s";
    QTest::newRow("beyond 32 bits") << qint64(100000) * 86400 << "100000d 00h 00m 00s";
    QTest::newRow("a second back") << qint64(-1) << "-1s";
    QTest::newRow("a minute back") << qint64(-61) << "-1m -1s";
    QTest::newRow("a day back") << qint64(-86400) << "-1d 00h 00m 00s";
}

void TimeSpanTest::a_span_shows_its_pieces_from_the_first_that_counts()
{
    QFETCH(qint64, seconds);
    QFETCH(QString, text);
    QCOMPARE(format_time_span(seconds), text);
}

KEST_GUILESS_TEST(TimeSpanTest)
#include "tst_time_span.moc"
