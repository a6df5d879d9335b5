#include "support/test_program.h"
#include "watch/machine_look.h"

#include <QTemporaryDir>
#include <QtTest>

/** The disk, the clock and the sleep of the machine. */
class WatchMachineTest : public QObject
{
    Q_OBJECT

private slots:
    void room_on_the_disk_is_judged_data();
    void room_on_the_disk_is_judged();
    void a_disk_that_wobbles_is_told_of_once_data();
    void a_disk_that_wobbles_is_told_of_once();
    void a_restart_forgets_no_disk();
    void the_clocks_tell_of_steps_and_of_sleep_data();
    void the_clocks_tell_of_steps_and_of_sleep();
    void what_happened_is_found_for_ten_minutes();
};

namespace
{
constexpr qint64 MB = 1000 * 1000;

/** The machine's conditions that have to do with its clocks. */
QStringList clock_events(const QList<Situation>& situations)
{
    QStringList found;
    for (const Situation& situation : situations)
        if (traits_of(situation.condition).moment)
            found << QString("%1: %2").arg(traits_of(situation.condition).key, situation.detail);
    return found;
}

class Clocks
{
public:
    QStringList look_after(qint64 awake_s, qint64 asleep_s = 0, qint64 set_by_s = 0)
    {
        now.awake_ms += awake_s * 1000;
        now.passed_ms += (awake_s + asleep_s) * 1000;
        now.time = now.time.addSecs(awake_s + asleep_s + set_by_s);
        return clock_events(machine.look(now, {{QFile::encodeName(folder.path()), 0}}));
    }

    QTemporaryDir folder;
    MachineLook machine;
    Moment now = {QDateTime(QDate(2026, 3, 4), QTime(1, 2), Qt::UTC), 1000000, 2000000};
};
}  // namespace

void WatchMachineTest::room_on_the_disk_is_judged_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("files");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, qint64 bytes, qint64 files, double rate,
                        const char* found) {
        QTest::newRow(name) << bytes << files << rate << QString(found);
    };
    row("plenty", 5000 * MB, 9, 0.0, "");
    row("just enough", 200 * MB, 9, 0.0, "");
    row("low", 200 * MB - 1, 9, 0.0, "disk-low: 200.0 MB are left.");
    row("a day of writing", 864 * MB, 9, 10000.0, "");
    row("less than a day of writing", 864 * MB - 1, 9, 10000.0,
        "disk-low: 864.0 MB are left, for 23h 59m 59s of writing.");
    row("an hour of writing", 36 * MB, 9, 10000.0,
        "disk-low: 36.0 MB are left, for 01h 00m 00s of writing.");
    row("a block", 4096, 9, 0.0, "disk-low: 0.0 MB are left.");
    row("less than a block", 4095, 9, 0.0,
        "disk-full: Nothing more can be written: rows are being lost.");
    row("no file more", 5000 * MB, 0, 0.0,
        "disk-full: Nothing more can be written: rows are being lost.");
}

void WatchMachineTest::room_on_the_disk_is_judged()
{
    QFETCH(qint64, bytes);
    QFETCH(qint64, files);
    QFETCH(double, rate);
    Situation situation;
    const bool found = judge_room({bytes, files, rate}, false, situation);
    QTEST(found ? QString("%1: %2").arg(traits_of(situation.condition).key, situation.detail)
                : QString(),
          "found");
}

void WatchMachineTest::a_disk_that_wobbles_is_told_of_once_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("files");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QString>("found");
    const auto row = [](const char* name, const char* before, qint64 bytes, qint64 files,
                        double rate, const char* found) {
        QTest::newRow(name) << QString(before) << bytes << files << rate << QString(found);
    };
    row("low, and a little more", "disk-low", 200 * MB, 9, 0.0, "disk-low");
    row("low, just before it ends", "disk-low", 250 * MB - 1, 9, 0.0, "disk-low");
    row("low, and its end", "disk-low", 250 * MB, 9, 0.0, "");
    row("low for a day, and a little more", "disk-low", 864 * MB, 9, 10000.0, "disk-low");
    row("low for a day, just before it ends", "disk-low", 1080 * MB - 1, 9, 10000.0, "disk-low");
    row("low for a day, and its end", "disk-low", 1080 * MB, 9, 10000.0, "");
    row("low, and nobody knows how fast it fills", "disk-low", 5000 * MB, 9, -1.0, "disk-low");
    row("well, and nobody knows how fast it fills", "", 5000 * MB, 9, -1.0, "");
    row("full, and a block comes free", "disk-full", 4096, 9, 0.0, "disk-full");
    row("full, just before it ends", "disk-full", 65535, 9, 0.0, "disk-full");
    row("full, and its end, but low", "disk-full", 65536, 999, 0.0, "disk-low");
    row("full, still low", "disk-full", 240 * MB, 999, 0.0, "disk-low");
    row("full, and all is well", "disk-full", 250 * MB, 999, 0.0, "");
    row("no file more, and one comes free", "disk-full", 5000 * MB, 1, 0.0, "disk-full");
    row("no file more, and its end", "disk-full", 5000 * MB, 16, 0.0, "");
    row("low, and full", "disk-low", 4095, 9, 0.0, "disk-full");
}

void WatchMachineTest::a_disk_that_wobbles_is_told_of_once()
{
    QFETCH(QString, before);
    QFETCH(qint64, bytes);
    QFETCH(qint64, files);
    QFETCH(double, rate);
    Situation situation;
    situation.condition = before == "disk-full" ? Condition::DiskFull : Condition::DiskLow;
    const bool found = judge_room({bytes, files, rate}, !before.isEmpty(), situation);
    QTEST(found ? QString(traits_of(situation.condition).key) : QString(), "found");
}

void WatchMachineTest::a_restart_forgets_no_disk()
{
    Situation low;
    low.log = "/";
    low.condition = Condition::DiskLow;
    low.since = QDateTime(QDate(2026, 3, 4), QTime(0, 2), Qt::UTC);
    MachineLook machine;
    machine.recall({low});
    Moment now = {QDateTime(QDate(2026, 3, 4), QTime(1, 2), Qt::UTC), 1000000, 2000000};
    QList<Situation> found = machine.look(now, {{"/", 0}});
    QCOMPARE(found.size(), 1);
    QVERIFY(found[0].condition == Condition::DiskLow);
    QCOMPARE(found[0].since, low.since);
    QCOMPARE(machine.disks().size(), 1);
}

void WatchMachineTest::the_clocks_tell_of_steps_and_of_sleep_data()
{
    QTest::addColumn<qint64>("awake");
    QTest::addColumn<qint64>("asleep");
    QTest::addColumn<qint64>("set_by");
    QTest::addColumn<QStringList>("found");
    const auto row = [](const char* name, qint64 awake, qint64 asleep, qint64 set_by,
                        const QStringList& found) {
        QTest::newRow(name) << awake << asleep << set_by << found;
    };
    row("nothing", 2, 0, 0, {});
    row("a late look", 300, 0, 0, {});
    row("a second of correction", 2, 0, 1, {});
    row("forward", 2, 0, 3600, {"clock-stepped: It was set forward by 01h 00m 00s."});
    row("back", 2, 0, -7, {"clock-stepped: It was set back by 07s."});
    row("asleep", 2, 9000, 0, {"woke-from-sleep: It slept for 02h 30m 00s."});
    row("asleep and set", 2, 60, -60,
        {"woke-from-sleep: It slept for 01m 00s.", "clock-stepped: It was set back by 01m 00s."});
}

void WatchMachineTest::the_clocks_tell_of_steps_and_of_sleep()
{
    QFETCH(qint64, awake);
    QFETCH(qint64, asleep);
    QFETCH(qint64, set_by);
    Clocks clocks;
    QCOMPARE(clocks.look_after(0), QStringList());
    QTEST(clocks.look_after(awake, asleep, set_by), "found");
}

void WatchMachineTest::what_happened_is_found_for_ten_minutes()
{
    Clocks clocks;
    clocks.look_after(0);
    QCOMPARE(clocks.look_after(2, 9000).size(), 1);
    QCOMPARE(clocks.look_after(600).size(), 1);
    QCOMPARE(clocks.look_after(1).size(), 0);
}

KEST_GUILESS_TEST(WatchMachineTest)
#include "tst_watch_machine.moc"
