#include "log/fixed_text.h"
#include "log/zone_clock.h"
#include "support/test_program.h"

#include <QtTest>

#include <limits>
#include <random>

/** Times and numbers in files, compared with the toolkit's own. */
class ZoneClockTest : public QObject
{
    Q_OBJECT

private slots:
    void a_time_has_its_distance_from_utc_data();
    void a_time_has_its_distance_from_utc();
    void times_are_the_toolkits_through_whole_years_data();
    void times_are_the_toolkits_through_whole_years();
    void numbers_have_their_decimals_data();
    void numbers_have_their_decimals();
};

namespace
{
QString text_of(ZoneClock& clock, qint64 milliseconds)
{
    RowText text;
    clock.append_time(text, milliseconds);
    return text.bytes();
}
}  // namespace

void ZoneClockTest::a_time_has_its_distance_from_utc_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDateTime>("local");
    QTest::addColumn<QString>("text");
    const QDateTime winter(QDate(2020, 1, 3), QTime(10, 2, 44));
    QTest::newRow("UTC") << QByteArray("UTC") << winter << "2020-01-03T10:02:44.000+00:00";
    QTest::newRow("Berlin in winter")
        << QByteArray("Europe/Berlin") << winter << "2020-01-03T10:02:44.000+01:00";
    QTest::newRow("Berlin in summer")
        << QByteArray("Europe/Berlin") << winter.addMonths(6) << "2020-07-03T10:02:44.000+02:00";
    QTest::newRow("west") << QByteArray("America/New_York") << winter
                          << "2020-01-03T10:02:44.000-05:00";
    QTest::newRow("half hours") << QByteArray("Asia/Kolkata") << winter
                                << "2020-01-03T10:02:44.000+05:30";
}

void ZoneClockTest::a_time_has_its_distance_from_utc()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDateTime, local);
    ZoneClock clock{QTimeZone(zone)};
    QTEST(text_of(clock, clock.milliseconds_of(local)), "text");
}

void ZoneClockTest::times_are_the_toolkits_through_whole_years_data()
{
    QTest::addColumn<QByteArray>("zone");
    for (const char* zone : {"UTC", "Europe/Berlin", "America/St_Johns", "Australia/Lord_Howe"})
        QTest::newRow(zone) << QByteArray(zone);
}

void ZoneClockTest::times_are_the_toolkits_through_whole_years()
{
    QFETCH(QByteArray, zone);
    const QTimeZone in_zone(zone);
    ZoneClock clock(in_zone);
    std::mt19937 random(2);
    qint64 milliseconds = 1500000000000;
    for (int i = 0; i < 3000; ++i) {
        milliseconds += random() % 100000000;
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(milliseconds, in_zone);
        const QString expected = time.toString("yyyy-MM-ddThh:mm:ss.zzz");
        const int minutes = time.offsetFromUtc() / 60;
        const QString offset = QString("%1%2:%3")
                                   .arg(minutes < 0 ? '-' : '+')
                                   .arg(qAbs(minutes) / 60, 2, 10, QChar('0'))
                                   .arg(qAbs(minutes) % 60, 2, 10, QChar('0'));
        QCOMPARE(text_of(clock, milliseconds), expected + offset);
    }
}

void ZoneClockTest::numbers_have_their_decimals_data()
{
    QTest::addColumn<double>("number");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("zero") << 0.0 << 2 << QByteArray("0.00");
    QTest::newRow("less than one") << 0.007 << 3 << QByteArray("0.007");
    QTest::newRow("negative") << -9.98 << 2 << QByteArray("-9.98");
    QTest::newRow("negative and rounded away") << -0.001 << 2 << QByteArray("0.00");
    QTest::newRow("no decimals") << 14.4 << 0 << QByteArray("14");
    QTest::newRow("zero without decimals") << 0.2 << 0 << QByteArray("0");
    QTest::newRow("rounded up") << 1.9996 << 3 << QByteArray("2.000");
    QTest::newRow("of four billion") << 3999999999.96 << 1 << QByteArray("4000000000.0");
    QTest::newRow("beyond four billion") << 4294967296.5 << 2 << QByteArray("4294967296.50");
    QTest::newRow("huge") << 1e15 << 2 << QByteArray("1000000000000000.00");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 2 << QByteArray();
}

void ZoneClockTest::numbers_have_their_decimals()
{
    QFETCH(double, number);
    QFETCH(int, decimals);
    RowText text;
    text.add('x');
    append_fixed(text, number, decimals);
    QTEST(text.bytes().mid(1), "text");
}

KEST_GUILESS_TEST(ZoneClockTest)
#include "tst_zone_clock.moc"
