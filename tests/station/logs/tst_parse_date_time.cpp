#include "station/logs/parse_date_time.h"
#include "support/test_program.h"

#include "common/date_time.h"

#include <QtTest>

class ParseDateTimeTest : public QObject
{
    Q_OBJECT

private slots:
    void texts_and_formats_are_brought_to_one_length_data();
    void texts_and_formats_are_brought_to_one_length();
    void other_formats_are_taken_as_they_are();
};

void ParseDateTimeTest::texts_and_formats_are_brought_to_one_length_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QDateTime>("expected");
    const QString seconds = Time::ISO_8601_DATE_TIME_FORMAT;
    const QString milliseconds = Time::ISO_8601_DATE_TIME_FORMAT_MS;
    const QDate date(2020, 4, 3);
    const auto row = [](const char* name, const char* text, const QString& format,
                        const QDateTime& expected) {
        QTest::newRow(name) << QString(text) << format << expected;
    };
    row("as long", "2020-04-03 09:15:02", seconds, QDateTime(date, QTime(9, 15, 2)));
    row("milliseconds", "2020-04-03 09:15:02.987", seconds, QDateTime(date, QTime(9, 15, 2)));
    row("anything behind", "2020-04-03 09:15:02 or so", seconds, QDateTime(date, QTime(9, 15, 2)));
    row("no seconds", "2020-04-03 09:15", seconds, QDateTime(date, QTime(9, 15)));
    row("the date alone", "2020-04-03", seconds, QDateTime(date, QTime(0, 0)));
    row("with milliseconds", "2020-04-03 09:15:02.987", milliseconds,
        QDateTime(date, QTime(9, 15, 2, 987)));
    row("without milliseconds", "2020-04-03 09:15:02", milliseconds,
        QDateTime(date, QTime(9, 15, 2)));
    row("a date for a date", "2020-04-03 09:15:02", Time::ISO_8601_DATE_FORMAT,
        QDateTime(date, QTime(0, 0)));
    row("month 13", "2020-13-03 09:15:02", seconds, QDateTime());
    row("hour 24", "2020-04-03 24:15:02", seconds, QDateTime());
    row("31 April", "2020-04-31 09:15:02", seconds, QDateTime());
    row("blanks in front", " 2020-04-03 09:15:02", seconds, QDateTime());
    // As the toolkit sees it: every part of an empty format has its default.
    row("nothing", "", seconds, QDateTime(QDate(1900, 1, 1), QTime(0, 0)));
    row("a word", "yesterday", seconds, QDateTime());
}

void ParseDateTimeTest::texts_and_formats_are_brought_to_one_length()
{
    QFETCH(QString, text);
    QFETCH(QString, format);
    QFETCH(QDateTime, expected);
    QDateTime date_time(QDate(1999, 1, 1), QTime(1, 1));
    QCOMPARE(parse_date_time(text, date_time, format), expected.isValid());
    QCOMPARE(date_time, expected);
}

void ParseDateTimeTest::other_formats_are_taken_as_they_are()
{
    QDateTime date_time;
    QVERIFY(parse_date_time("09:15:02", date_time, "hh:mm:ss"));
    QCOMPARE(date_time.time(), QTime(9, 15, 2));
    QVERIFY(!parse_date_time("09:15:02.987", date_time, "hh:mm:ss"));
    QVERIFY(!parse_date_time("09:15", date_time, "hh:mm:ss"));
}

KEST_GUILESS_TEST(ParseDateTimeTest)
#include "tst_parse_date_time.moc"
