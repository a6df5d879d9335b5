#include "records/log_check.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

/** What a log holds, as values. */
class LogSummaryTest : public QObject
{
    Q_OBJECT

private slots:
    void sections_and_cycles_of_a_current_log();
    void an_older_log_has_rows_in_its_charges_too();
    void live_watt_hours_come_from_the_amp_hours();
    void the_error_bound_holds_for_any_rounding();
    void held_rows_are_counted_apart();
    void gaps_steps_and_disorder_are_counted();
    void steps_of_the_clock_are_found_data();
    void steps_of_the_clock_are_found();
    void resistances_have_mean_and_spread();
    void a_refused_log_tells_what_was_understood();
};

namespace
{
const QByteArray DISCHARGE = "Kestrometer Log\nDischarge Number: 1\n"
                             "Timestamp: 2020-04-03 10:00:00\n";

LogFile summary_of(const QByteArray& log, const QByteArray& events = QByteArray())
{
    const QTemporaryDir folder;
    write_file(folder.filePath("a.csv"), log);
    if (!events.isEmpty())
        write_file(folder.filePath("a.txt"), events);
    LogFile file;
    if (!summarize_log(folder.filePath("a.csv"), file))
        qFatal("The log cannot be read.");
    return file;
}
}  // namespace

void LogSummaryTest::sections_and_cycles_of_a_current_log()
{
    const LogFile file = summary_of(content_of(test_data("logs/current_one_cycle.csv")));
    QVERIFY(file.accepted);
    QCOMPARE(file.battery, QString("Pack A"));
    QCOMPARE(file.serial_number, QString("1042"));
    QVERIFY(file.generation == LogGeneration::Current);
    QCOMPARE(file.sections.size(), 3);
    const Section& charge = file.sections[0];
    QVERIFY(charge.kind == SectionKind::Charge);
    QCOMPARE(charge.number, 1);
    QCOMPARE(charge.line, qint64(4));
    QCOMPARE(charge.start, QDateTime(QDate(2020, 4, 3), QTime(9, 15, 2)));
    QCOMPARE(charge.parameters.max_charge_time, 28800);
    QCOMPARE(charge.count.rows, qint64(2));
    QCOMPARE(charge.first_volts, 41.52);
    QCOMPARE(charge.last_volts, 41.53);
    const Section& discharge = file.sections[1];
    QVERIFY(discharge.kind == SectionKind::Discharge);
    QCOMPARE(discharge.count.rows, qint64(3));
    QCOMPARE(discharge.count.last_seconds, 181.2);
    QCOMPARE(discharge.lowest_volts, 40.11);
    QCOMPARE(file.sections[2].number, 2);
    QCOMPARE(file.cycles.size(), 1);
    QCOMPARE(file.cycles[0].section, 1);
    QCOMPARE(file.cycles[0].amp_hours, 0.502);
    QCOMPARE(file.repeated_sections(), 0);
}

void LogSummaryTest::an_older_log_has_rows_in_its_charges_too()
{
    const LogFile file = summary_of(content_of(test_data("logs/older_two_cycles.csv")));
    QVERIFY(file.accepted);
    QVERIFY(file.generation == LogGeneration::Older);
    QCOMPARE(file.sections.size(), 5);
    QCOMPARE(file.sections[0].count.rows, qint64(2));
    QCOMPARE(file.sections[0].last_volts, 38.2);
    QCOMPARE(file.sections[4].count.rows, qint64(1));
    QCOMPARE(file.cycles.size(), 2);
    QCOMPARE(file.cycles[1].amp_hours, 1.6);
}

void LogSummaryTest::live_watt_hours_come_from_the_amp_hours()
{
    // The time steps play no part: three lines between the last two rows were no readings.
    const LogFile file = summary_of(DISCHARGE + "1.0,0.003,40.00,10.00\n2.0,0.006,39.00,10.00\n"
                                                "6.0,0.009,38.00,10.00\n");
    const Cycle& cycle = file.cycles[0];
    QCOMPARE(cycle.watt_hours_live, 40.0 * 0.003 + 39.0 * 0.003 + 38.0 * 0.003);
    QCOMPARE(cycle.watt_hours_error, 0.0005 * (38.0 + 2.0));
    QVERIFY(cycle.watt_hours_loaded > cycle.watt_hours_live);
}

/** The same discharge with all its digits and as a log has it: they differ by no more than is said. */
void LogSummaryTest::the_error_bound_holds_for_any_rounding()
{
    QByteArray log = DISCHARGE;
    double exact = 0.0;
    double before = 0.0;
    for (int i = 1; i <= 500; ++i) {
        const double amp_hours = 0.0027731 * i;
        const double volts = 41.0 - 0.01 * (i * 7 % 90);
        exact += volts * (amp_hours - before);
        before = amp_hours;
        log += QByteArray::number(i) + ".0," + QByteArray::number(amp_hours, 'f', 3) + ',' +
               QByteArray::number(volts, 'f', 2) + ",9.98\n";
    }
    const LogFile file = summary_of(log);
    const Cycle& cycle = file.cycles[0];
    QVERIFY(std::fabs(cycle.watt_hours_live - exact) <= cycle.watt_hours_error);
    QVERIFY(cycle.watt_hours_live != exact);
}

void LogSummaryTest::held_rows_are_counted_apart()
{
    const QByteArray rows = "1.0,0.003,40.00,10.00\n2.0,0.006,39.00,10.00\n"
                            "3.0,0.009,39.00,10.00\n4.0,0.012,39.00,10.00,0.014\n"
                            "5.0,0.015,38.00,10.00\n6.0,0.018,38.00,10.00\n";
    const QByteArray events =
        "2020-04-03 10:00:02 Switching to phase IR Test because x\n"
        "2020-04-03 10:00:03 Switching to phase Recovering from IR Test because x\n"
        "2020-04-03 10:00:04 Switching to phase Discharging because x\n";
    QCOMPARE(summary_of(DISCHARGE + rows, events).cycles[0].watt_hours_held,
             39.0 * (0.009 - 0.006) + 39.0 * (0.012 - 0.009));
    QCOMPARE(summary_of(DISCHARGE + rows).cycles[0].watt_hours_held, 0.0);
}

void LogSummaryTest::gaps_steps_and_disorder_are_counted()
{
    const LogFile file = summary_of(
        DISCHARGE + "1.0,0.003,40.00,10.00\n6.0,0.006,40.00,10.00\n11.1,0.009,40.00,10.00\n"
                    "9.0,0.010,40.00,10.00\n10.0,0.008,40.00,10.00\n");
    const RowCount& count = file.sections[0].count;
    QCOMPARE(count.rows, qint64(5));
    QCOMPARE(count.gap_count, qint64(1));
    QCOMPARE(count.gaps[0].line, qint64(6));
    QCOMPARE(count.gaps[0].begin, 6.0);
    QVERIFY(std::fabs(count.gaps[0].seconds - 5.1) < 1e-9);
    QCOMPARE(count.clock_steps, qint64(1));
    QCOMPARE(count.clock_steps_back, qint64(1));
    QCOMPARE(count.rows_out_of_order, qint64(1));
    QCOMPARE(count.rate(), 4.0 / 9.0);
}

void LogSummaryTest::steps_of_the_clock_are_found_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QByteArray>("events");
    QTest::addColumn<QString>("steps");
    const QByteArray none;
    const auto head = [](const char* kind, const char* time) {
        return QByteArray(kind) + " Number: 1\nTimestamp: 2020-04-03 " + time + "\n";
    };
    const auto change = [](const char* time, const char* text) {
        return QByteArray("2020-04-03 ") + time + " Switching to phase " + text + '\n';
    };
    const QByteArray charge =
        "Kestrometer Log\n" + head("Charge", "10:00:00") + "1.0,41.00\n2.0,41.00\n60.0,41.00\n";
    const QByteArray row = "1.0,0.003,40.00,10.00\n";
    const QByteArray start = change("10:00:00", "Charging because User clicked 'Start'.");
    const char* const at_once = "Discharging because max charge time reached, first cycle";
    const char* const by_hand = "Discharging because User clicked 'Skip'";
    QTest::newRow("none") << charge + head("Discharge", "10:01:00") + row << none << "";
    QTest::newRow("cut seconds") << charge + head("Discharge", "10:00:59") + row << none << "";
    QTest::newRow("back in a section") << charge + "5.0,41.00\n6.0,41.00\n" << none << "7:-55";
    QTest::newRow("back between sections")
        << charge + head("Discharge", "09:01:00") + row << none << "7:-3600";
    QTest::newRow("back at midnight")
        << "Kestrometer Log\nCharge Number: 1\nTimestamp: 2020-04-04 00:10:00\n1.0,41.00\n"
           "Discharge Number: 1\nTimestamp: 2020-04-03 23:10:01\n" +
               row
        << none << "5:-3600";
    QTest::newRow("on between sections") << charge + head("Discharge", "11:01:00") + row
                                         << start + change("11:01:00", at_once) << "7:3600";
    QTest::newRow("rows lost between sections") << charge + head("Discharge", "10:31:40") + row
                                                << start + change("10:31:40", at_once) << "";
    QTest::newRow("a pause between sections") << charge + head("Discharge", "11:01:00") + row
                                              << start + change("11:01:00", by_hand) << "";
    QTest::newRow("a pause of which nothing tells")
        << charge + head("Discharge", "11:01:00") + row << none << "";
    const QByteArray tested = DISCHARGE + "10.0,0.030,40.00,10.00,0.014\n"
                                          "20.0,0.060,39.00,10.00,0.014\n"
                                          "30.0,0.090,38.00,10.00,0.015\n";
    const char* const ir = "Recovering from IR Test because Completed IR Test, IR = 14.250";
    const char* const other = "Recovering from IR Test because Completed IR Test, IR = 14.600";
    const QByteArray begin = change("10:00:00", at_once);
    QTest::newRow("as the event log tells")
        << tested
        << begin + change("10:00:10", ir) + change("10:00:21", ir) + change("10:00:30", other)
        << "";
    QTest::newRow("on inside a section")
        << tested
        << begin + change("10:00:10", ir) + change("11:00:20", ir) + change("11:00:30", other)
        << "5:3600";
    QTest::newRow("back inside a section")
        << tested
        << begin + change("10:00:10", ir) + change("10:00:20", ir) + change("09:00:30", other)
        << "6:-3600";
    QTest::newRow("an event lost")
        << tested << begin + change("10:00:20", ir) + change("10:00:30", other) << "";
    QTest::newRow("events of another log")
        << tested << change("08:00:00", at_once) + change("11:00:10", ir) << "";
}

void LogSummaryTest::steps_of_the_clock_are_found()
{
    QFETCH(QByteArray, log);
    QFETCH(QByteArray, events);
    const LogFile file = summary_of(log, events);
    QStringList steps;
    qint64 count = 0;
    for (const Section& section : file.sections) {
        count += section.count.clock_steps;
        for (const ClockStep& step : section.count.steps)
            steps << QString("%1:%2").arg(step.line).arg(step.seconds);
    }
    QTEST(steps.join(' '), "steps");
    QCOMPARE(count, qint64(steps.size()));
}

void LogSummaryTest::resistances_have_mean_and_spread()
{
    const LogFile file =
        summary_of(DISCHARGE + "1.0,0.003,40.00,10.00,0.010\n2.0,0.006,40.00,10.00,0.012\n"
                               "3.0,0.009,40.00,10.00,0.017\n4.0,0.012,40.00,10.00,-0.001\n");
    const Resistance& resistance = file.cycles[0].resistance;
    QCOMPARE(resistance.count, qint64(4));
    QVERIFY(std::fabs(resistance.mean - 9.5) < 1e-9);
    // Squares of the distances: 0.25, 6.25, 56.25 and 110.25.
    QVERIFY(std::fabs(resistance.spread - std::sqrt(173.0 / 3.0)) < 1e-9);
    QCOMPARE(resistance.lowest, -1.0);
    QCOMPARE(resistance.highest, 17.0);
    QCOMPARE(file.cycles[0].negative_resistances, qint64(1));
}

void LogSummaryTest::a_refused_log_tells_what_was_understood()
{
    const LogFile file = summary_of(DISCHARGE + "1.0,0.003,40.00,10.00\nx\n");
    QVERIFY(!file.accepted);
    QCOMPARE(file.refusal.line, qint64(5));
    QCOMPARE(file.cycles.size(), 1);
    QCOMPARE(file.cycles[0].amp_hours, 0.003);
}

KEST_GUILESS_TEST(LogSummaryTest)
#include "tst_log_summary.moc"
