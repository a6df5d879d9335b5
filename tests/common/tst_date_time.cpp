#include "common/date_time.h"
#include "support/test_program.h"

#include <QtTest>

#include <ctime>

namespace
{
constexpr qint64 HALF_AN_HOUR = qint64(30) * 60 * 1000;

/** Puts the process into another zone, given by its rule so that no zone files are needed. */
class Zone
{
public:
    explicit Zone(const char* rule) : former(qgetenv("TZ"))
    {
        qputenv("TZ", rule);
        ::tzset();
    }

    ~Zone()
    {
        qputenv("TZ", former);
        ::tzset();
    }

    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

private:
    QByteArray former;
};
}  // namespace

class DateTimeTest : public QObject
{
    Q_OBJECT

private slots:
    void the_formats_are_those_of_all_logs();
    void the_present_time_is_the_clock_of_the_machine();
    void another_clock_stands_in_until_it_is_taken_away();
    void a_moment_reads_as_the_clock_on_the_wall_does_data();
    void a_moment_reads_as_the_clock_on_the_wall_does();
    void a_change_of_the_wall_clock_is_no_time_that_passed();
    void milliseconds_are_kept_also_before_1970();
};

void DateTimeTest::the_formats_are_those_of_all_logs()
{
    const QDateTime time(QDate(2020, 4, 3), QTime(9, 5, 2, 7));
    QCOMPARE(time.toString(Time::ISO_8601_DATE_TIME_FORMAT_MS), QString("2020-04-03 09:05:02.007"));
    QCOMPARE(time.toString(Time::ISO_8601_DATE_TIME_FORMAT), QString("2020-04-03 09:05:02"));
    QCOMPARE(time.toString(Time::ISO_8601_DATE_FORMAT), QString("2020-04-03"));
    QCOMPARE(time.toString(Time::ISO_8601_TIME_FORMAT_MS), QString("09:05:02.007"));
    QCOMPARE(time.toString(Time::ISO_8601_TIME_FORMAT), QString("09:05:02"));
}

void DateTimeTest::the_present_time_is_the_clock_of_the_machine()
{
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    const qint64 now = Time::now().toMSecsSinceEpoch();
    const qint64 after = QDateTime::currentMSecsSinceEpoch();
    QVERIFY(before <= now && now <= after);
}

void DateTimeTest::another_clock_stands_in_until_it_is_taken_away()
{
    QDateTime other(QDate(2020, 4, 3), QTime(9, 15));
    Time::set_clock([other] { return other; });
    QCOMPARE(Time::now(), other);
    Time::set_clock({});
    QVERIFY(Time::now() > other.addYears(1));
}

void DateTimeTest::a_moment_reads_as_the_clock_on_the_wall_does_data()
{
    QTest::addColumn<QByteArray>("zone");

    QTest::newRow("no offset") << QByteArray("UTC0");
    QTest::newRow("summer time in the north") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3");
    QTest::newRow("summer time in the south") << QByteArray("AEST-10AEDT,M10.1.0,M4.1.0/3");
    QTest::newRow("west, half hours") << QByteArray("NST3:30NDT,M3.2.0,M11.1.0");
    QTest::newRow("east, quarters of an hour") << QByteArray("KTM-5:45");
}

void DateTimeTest::a_moment_reads_as_the_clock_on_the_wall_does()
{
    QFETCH(QByteArray, zone);
    const Zone here(zone.constData());
    const qint64 start = QDateTime(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    const qint64 end = QDateTime(QDate(2021, 1, 1), QTime(0, 0), Qt::UTC).toMSecsSinceEpoch();
    for (qint64 moment = start; moment < end; moment += HALF_AN_HOUR) {
        for (const qint64 ms : {moment - 1, moment}) {
            const QDateTime plain = QDateTime::fromMSecsSinceEpoch(ms);
            const QDateTime time = Time::local_time(ms);
            QCOMPARE(time.date(), plain.date());
            QCOMPARE(time.time(), plain.time());
            QCOMPARE(time.toMSecsSinceEpoch(), ms);
            QCOMPARE(time, plain);
        }
    }
}

void DateTimeTest::a_change_of_the_wall_clock_is_no_time_that_passed()
{
    const Zone here("CET-1CEST,M3.5.0,M10.5.0/3");
    const QDateTime before(QDate(2020, 10, 25), QTime(0, 59, 59, 500), Qt::UTC);
    const QDateTime summer = Time::local_time(before.toMSecsSinceEpoch());
    const QDateTime winter = Time::local_time(before.toMSecsSinceEpoch() + 1000);
    QCOMPARE(summer.toString(Time::ISO_8601_TIME_FORMAT_MS), QString("02:59:59.500"));
    QCOMPARE(winter.toString(Time::ISO_8601_TIME_FORMAT_MS), QString("02:00:00.500"));
    QCOMPARE(summer.msecsTo(winter), qint64(1000));
    QVERIFY(summer < winter);
}

void DateTimeTest::milliseconds_are_kept_also_before_1970()
{
    QCOMPARE(Time::local_time(-1500).toMSecsSinceEpoch(), qint64(-1500));
    QCOMPARE(Time::local_time(-1).toMSecsSinceEpoch(), qint64(-1));
}

KEST_GUILESS_TEST(DateTimeTest)
#include "tst_date_time.moc"
