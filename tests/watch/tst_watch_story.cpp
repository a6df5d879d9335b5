#include "records/test_story.h"
#include "support/test_program.h"

#include <QtTest>

/** What the event log has told of a test so far. */
class WatchStoryTest : public QObject
{
    Q_OBJECT

private slots:
    void a_phase_counts_after_three_seconds_data();
    void a_phase_counts_after_three_seconds();
    void a_log_of_earlier_tells_by_its_own_times_what_has_stood();
    void what_has_counted_does_not_give_way_to_what_was_before();
    void botched_tests_count_in_a_row_data();
    void botched_tests_count_in_a_row();
    void resets_count_while_nothing_shows_life();
    void discharges_are_counted_and_resistance_tests_are_none();
};

namespace
{
/** Lines at seconds of the log's own clock, all read at one moment or as they come. */
class Story
{
public:
    void tell(int second, const QString& text, qint64 arrival_ms = -1)
    {
        const QDateTime time = QDateTime(QDate(2020, 4, 3), QTime(9, 0)).addSecs(second);
        story.take(read_event_line(time.toString("yyyy-MM-dd hh:mm:ss ") + text),
                   arrival_ms < 0 ? qint64(second) * 1000 : arrival_ms);
    }
    void change(int second, const QString& phase, const QString& reason = "x", qint64 arrival = -1)
    {
        tell(second, "Switching to phase " + phase + " because " + reason, arrival);
    }

    TestStory story;
};

const QString BOTCHED =
    "botched IR test, open circuit voltage = 1 V, closed circuit voltage = 2 V, "
    "I = 3 A, ir = -4 mOhm";
const QString RESET = "Attempting to reset the Kestrometer as it may be stuck in bootloader mode.";
}  // namespace

void WatchStoryTest::a_phase_counts_after_three_seconds_data()
{
    QTest::addColumn<qint64>("now_ms");
    QTest::addColumn<QString>("phase");
    add_row("before the change", qint64(100000), QString("Charging (final)"));
    add_row("as both come", qint64(100001), QString("Charging (final)"));
    add_row("just before", qint64(102999), QString("Charging (final)"));
    add_row("after three seconds", qint64(103000), QString("Final Charge Test"));
}

/** A charge passes through Done to a charge test on one line, and perhaps goes on. */
void WatchStoryTest::a_phase_counts_after_three_seconds()
{
    QFETCH(qint64, now_ms);
    Story story;
    story.change(0, "Charging (final)");
    story.change(100, "Done");
    story.change(100, "Final Charge Test");
    QTEST(story.story.phase(now_ms).text, "phase");
    QCOMPARE(story.story.last_phase().text, QString("Final Charge Test"));
}

void WatchStoryTest::a_log_of_earlier_tells_by_its_own_times_what_has_stood()
{
    Story story;
    const qint64 now = 5000000;
    QVERIFY(story.story.empty);
    story.change(0, "Charging", "x", now);
    QCOMPARE(story.story.phase(now).text, QString("Charging"));
    story.change(60, "Discharging", "x", now);
    QCOMPARE(story.story.phase(now).text, QString("Charging"));
    story.tell(62, "KEST\t1", now);
    QCOMPARE(story.story.phase(now).text, QString("Charging"));
    story.tell(63, "KEST\t1", now);
    QCOMPARE(story.story.phase(now).text, QString("Discharging"));
    // The clock was set back by an hour in between.
    story.change(-3600, "Done", "x", now);
    QCOMPARE(story.story.phase(now).text, QString("Discharging"));
    QCOMPARE(story.story.phase(now + 3000).text, QString("Done"));
}

void WatchStoryTest::what_has_counted_does_not_give_way_to_what_was_before()
{
    Story story;
    story.change(0, "Ready for 1st Discharge", "x", 10000);
    story.change(10, "Discharging", "x", 20000);
    QCOMPARE(story.story.phase(23000).text, QString("Discharging"));
    // Two seconds by the log, whose clock was set, and more for whoever looks.
    story.change(12, "Done", "x", 23500);
    QCOMPARE(story.story.phase(23500).text, QString("Discharging"));
    QCOMPARE(story.story.phase(26500).text, QString("Done"));
}

void WatchStoryTest::botched_tests_count_in_a_row_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("botched");
    const QString bad = "Switching to phase Recovering from IR Test because Completed IR Test, "
                        "IR = -4.000";
    const QString good = "Switching to phase Recovering from IR Test because Completed IR Test, "
                         "IR = 14.000";
    const QString back = "Switching to phase Discharging because Finished recovering from IR test";
    const QString next = "Switching to phase Discharging because User clicked 'Skip'";
    const QStringList once = {BOTCHED, bad, back};
    add_row("none", QStringList{next, good, back}, 0);
    add_row("three", QStringList(QStringList{next} + once + once + once), 3);
    add_row("a good one between", QStringList(once + once + QStringList{good, back} + once), 1);
    add_row("another discharge",
            QStringList(once + QStringList{"Switching to phase Charging because "
                                           "User clicked 'Skip'",
                                           next}),
            0);
}

void WatchStoryTest::botched_tests_count_in_a_row()
{
    QFETCH(QStringList, lines);
    Story story;
    int second = 0;
    for (const QString& line : lines)
        story.tell(second += 2, line);
    QTEST(story.story.botched_tests, "botched");
}

void WatchStoryTest::resets_count_while_nothing_shows_life()
{
    Story story;
    story.change(0, "Charging");
    for (const int second : {100, 105, 115})
        story.tell(second, RESET);
    QCOMPARE(story.story.resets, 3);
    QCOMPARE(story.story.first_reset_ms, qint64(100000));
    QCOMPARE(story.story.reset_ms, qint64(115000));
    story.tell(150, RESET);  // it has spoken in between
    QCOMPARE(story.story.resets, 1);
    QCOMPARE(story.story.first_reset_ms, qint64(150000));
    QVERIFY(!story.story.has_telemetry);
    story.tell(151, "KEST\t1");
    QCOMPARE(story.story.resets, 0);
    QVERIFY(story.story.has_telemetry);
    QCOMPARE(story.story.telemetry_ms, qint64(151000));
}

void WatchStoryTest::discharges_are_counted_and_resistance_tests_are_none()
{
    Story story;
    story.change(0, "Charging");
    story.change(10, "Discharging");
    story.change(20, "IR Test");
    story.change(22, "Recovering from IR Test");
    story.change(24, "Discharging");
    QCOMPARE(story.story.discharges, 1);
    story.change(34, "Charging");
    story.change(44, "Discharging");
    QCOMPARE(story.story.discharges, 2);
}

KEST_GUILESS_TEST(WatchStoryTest)
#include "tst_watch_story.moc"
