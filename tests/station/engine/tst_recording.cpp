#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QtTest>

/** What is kept of each line: samples, rows of the data log, amp-hours and watt-hours. */
class RecordingTest : public QObject
{
    Q_OBJECT

private slots:
    void a_line_is_recorded_by_phase_data();
    void a_line_is_recorded_by_phase();
    void without_a_log_readings_are_shown_but_not_recorded_data();
    void without_a_log_readings_are_shown_but_not_recorded();
    void an_idle_station_shows_its_voltage();
    void the_time_of_a_row_is_that_of_arrival();
    void a_line_that_ends_a_leg_belongs_to_it();
    void the_newest_reading_counts_for_all_of_the_time_since_the_line_before();
    void fractions_of_a_second_count();
    void two_pairs_of_readings_count_by_their_mean();
    void a_line_without_current_adds_to_nothing_but_time_data();
    void a_line_without_current_adds_to_nothing_but_time();
    void a_negative_current_lowers_the_totals();
    void the_interval_of_an_invalid_line_is_lost_data();
    void the_interval_of_an_invalid_line_is_lost();
    void a_gap_counts_with_the_reading_behind_it();
    void a_reading_that_is_no_number_is_taken_as_it_comes();
    void the_totals_are_those_of_the_current_cycle();
};

namespace
{
int samples(const TestStation& station)
{
    int count = 0;
    for (const TestCycle* cycle : station.cycles)
        count += cycle->voltage_vs_amphours.points.size();
    return count;
}

void add_row(const char* name, Phase phase, const char* state, const QStringList& rows,
             int charge_samples, int discharge_samples)
{
    add_row(name, int(phase), QByteArray(state), rows, charge_samples, discharge_samples);
}

/** Ten amps for a quarter of an hour. */
void discharge_for_a_while(StationBench& bench)
{
    bench.station->measure_internal_resistance = false;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->current_cycle->amp_hours = 0.0;
    bench.station->current_cycle->watt_hours = 0.0;
    bench.receive_after(900.0, "40.00", "10.0", "D");
}
}  // namespace

void RecordingTest::a_line_is_recorded_by_phase_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<int>("charge_samples");
    QTest::addColumn<int>("discharge_samples");
    add_row("charging", PHASE_CHARGING, "C", {"2.0,40.50"}, 1, 0);
    add_row("charging on", PHASE_CHARGING_LEVELED, "C", {"3.0,40.50"}, 1, 0);
    add_row("full charge test", PHASE_FULL_CHARGE_TEST, "C", {"304.0,40.50"}, 1, 0);
    add_row("ready", PHASE_READY_FOR_DISCHARGE, "O", {}, 0, 0);
    add_row("discharging", PHASE_DISCHARGING, "D", {"2.0,0.004,40.50,5.25"}, 0, 1);
    add_row("resistance test", PHASE_IR_TEST, "D", {"182.0,0.506,40.00,10.00"}, 0, 1);
    add_row("recovery", PHASE_IR_RECOVERY, "D", {"183.0,0.508,40.00,10.00"}, 0, 1);
    add_row("final charge", PHASE_FINAL_CHARGE, "C", {"2.0,40.50"}, 1, 0);
    add_row("final charge test", PHASE_FINAL_CHARGE_TEST, "C", {"303.0,40.50"}, 1, 0);
    add_row("done", PHASE_DONE, "O", {}, 0, 0);
}

void RecordingTest::a_line_is_recorded_by_phase()
{
    QFETCH(int, phase);
    QFETCH(QByteArray, state);
    QFETCH(QStringList, rows);
    StationBench bench;
    bring_to(bench, Phase(phase));
    const TestStation& station = *bench.station;
    const QStringList rows_before = last_rows(bench);
    const int charge_before = station.charge_voltage_series.points.size();
    const int discharge_before = samples(station);

    bench.receive("40.50", "5.25", state.constData());
    QCOMPARE(last_rows(bench), rows_before + rows);
    QTEST(station.charge_voltage_series.points.size() - charge_before, "charge_samples");
    QTEST(samples(station) - discharge_before, "discharge_samples");
}

void RecordingTest::without_a_log_readings_are_shown_but_not_recorded_data()
{
    QTest::addColumn<int>("phase");
    for (int phase = PHASE_CHARGING; phase <= PHASE_DONE; ++phase)
        QTest::addRow("phase %d", phase) << phase;
}

void RecordingTest::without_a_log_readings_are_shown_but_not_recorded()
{
    QFETCH(int, phase);
    StationBench bench;
    bring_to(bench, Phase(phase));
    TestStation& station = *bench.station;
    const QByteArray csv = bench.csv();
    const QByteArray txt = bench.txt();
    const int charge_before = station.charge_voltage_series.points.size();
    const int discharge_before = samples(station);
    QFile* log = station.data_log;
    station.data_log = nullptr;

    // Long and low enough to end any leg.
    bench.receive_after(90000.0, "12.30", "4.5", "O");
    station.data_log = log;
    QCOMPARE(station.phase, Phase(phase));
    QCOMPARE(bench.text("laVoltage"), QString("12.3 V"));
    QCOMPARE(station.charge_voltage_series.points.size(), charge_before);
    QCOMPARE(samples(station), discharge_before);
    QCOMPARE(bench.csv(), csv);
    QCOMPARE(bench.txt(), txt);
}

void RecordingTest::an_idle_station_shows_its_voltage()
{
    StationBench bench;
    bench.receive("41.27", "3.0", "O");
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.text("laVoltage"), QString("41.3 V"));
    QVERIFY(bench.station->charge_voltage_series.points.isEmpty());
    QVERIFY(bench.station->cycles.isEmpty());
    QCOMPARE(QDir(bench.folder.path()).entryList(QDir::Files), QStringList());
}

void RecordingTest::the_time_of_a_row_is_that_of_arrival()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    bench.receive_after(0.2, "41.52", "1.0", "C");
    bench.receive_after(3599.0, "41.53", "1.0", "C");
    QCOMPARE(last_rows(bench), (QStringList{"1.0,41.50", "1.2,41.52", "3600.2,41.53"}));
    QCOMPARE(bench.station->charge_voltage_series.points,
             (QList<QPointF>{{1.0, 41.5}, {1.2, 41.52}, {3600.2, 41.53}}));
}

void RecordingTest::a_line_that_ends_a_leg_belongs_to_it()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.receive("18.99", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    QVERIFY(bench.csv().contains("\n1.0,0.003,40.00,10.00\n2.0,0.006,18.99,10.00\nCharge Number"));
    bench.receive("30.00", "0.0", "C");
    QCOMPARE(last_rows(bench), QStringList{"1.0,30.00"});
}

void RecordingTest::the_newest_reading_counts_for_all_of_the_time_since_the_line_before()
{
    StationBench bench;
    discharge_for_a_while(bench);
    const TestCycle& cycle = *bench.station->current_cycle;
    QCOMPARE(cycle.amp_hours, 2.5);
    QCOMPARE(cycle.watt_hours, 100.0);
    // The mean with the reading before, 40 V and 10 A, would give other sums.
    bench.receive_after(450.0, "36.00", "4.0", "D");
    QCOMPARE(cycle.amp_hours, 3.0);
    QCOMPARE(cycle.watt_hours, 118.0);
    QCOMPARE(cycle.voltage_vs_amphours.points.last(), QPointF(3.0, 36.0));
    QCOMPARE(cycle.current_vs_amphours.points.last(), QPointF(3.0, 4.0));
    QCOMPARE(last_rows(bench).last(), QString("1351.0,3.000,36.00,4.00"));
}

void RecordingTest::fractions_of_a_second_count()
{
    StationBench bench;
    discharge_for_a_while(bench);
    for (int line = 0; line < 4; ++line)
        bench.receive_after(0.9, "40.00", "100.0", "D");
    QCOMPARE(bench.station->current_cycle->amp_hours, 2.6);
    QCOMPARE(bench.station->current_cycle->watt_hours, 104.0);
    QCOMPARE(last_rows(bench).last(), QString("904.6,2.600,40.00,100.00"));
}

void RecordingTest::two_pairs_of_readings_count_by_their_mean()
{
    StationBench bench;
    discharge_for_a_while(bench);
    Kestrometer& instrument = *bench.instrument;
    instrument.valid_voltage = 30.0;
    instrument.voltage = 40.0;
    instrument.valid_current = 2.0;
    instrument.current = 4.0;
    instrument.previous_data_time = instrument.last_data_time;
    instrument.last_data_time = instrument.last_data_time.addSecs(3600);
    bench.station->slot_measurement();
    QCOMPARE(bench.station->current_cycle->amp_hours, 5.5);
    QCOMPARE(bench.station->current_cycle->watt_hours, 205.0);
    QCOMPARE(last_rows(bench).last(), QString("4501.0,5.500,40.00,4.00"));
}

void RecordingTest::a_line_without_current_adds_to_nothing_but_time_data()
{
    QTest::addColumn<QByteArray>("current");
    QTest::addColumn<int>("new_samples");
    QTest::newRow("none") << QByteArray("0.0") << 0;
    QTest::newRow("just below") << QByteArray("0.0099") << 0;
    QTest::newRow("exactly the least") << QByteArray("0.01") << 0;
    QTest::newRow("just above") << QByteArray("0.0101") << 1;
    QTest::newRow("the least that the instrument shows") << QByteArray("0.1") << 1;
    QTest::newRow("backwards") << QByteArray("-5.0") << 0;
}

void RecordingTest::a_line_without_current_adds_to_nothing_but_time()
{
    QFETCH(QByteArray, current);
    QFETCH(int, new_samples);
    StationBench bench;
    discharge_for_a_while(bench);
    const TestCycle& cycle = *bench.station->current_cycle;
    const int samples_before = cycle.voltage_vs_amphours.points.size();
    const int rows_before = last_rows(bench).size();

    bench.receive_after(3600.0, "40.00", current.constData(), "D");
    QCOMPARE(cycle.amp_hours, 2.5 + current.toDouble());
    QCOMPARE(cycle.watt_hours, 100.0 + 40.0 * current.toDouble());
    QCOMPARE(cycle.voltage_vs_amphours.points.size(), samples_before + new_samples);
    QCOMPARE(cycle.current_vs_amphours.points.size(), samples_before + new_samples);
    QCOMPARE(last_rows(bench).size(), rows_before + new_samples);
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void RecordingTest::a_negative_current_lowers_the_totals()
{
    StationBench bench;
    discharge_for_a_while(bench);
    bench.receive_after(1800.0, "40.00", "-2.0", "D");
    QCOMPARE(bench.station->current_cycle->amp_hours, 1.5);
    QCOMPARE(bench.station->current_cycle->watt_hours, 60.0);
    bench.receive_after(900.0, "40.00", "2.0", "D");
    QCOMPARE(last_rows(bench).last(), QString("3601.0,2.000,40.00,2.00"));
}

void RecordingTest::the_interval_of_an_invalid_line_is_lost_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("too few fields") << QByteArray("x\t40.00\t10.0\tx\tx\tID=7");
    QTest::newRow("no voltage") << QByteArray("x\tvolts\t10.0\tx\tx\tID=7\tD");
    QTest::newRow("no current") << QByteArray("x\t40.00\t\tx\tx\tID=7\tD");
    QTest::newRow("no number") << QByteArray("x\t40.00\t10.0\tx\tx\tID=\tD");
    QTest::newRow("two letters") << QByteArray("x\t40.00\t10.0\tx\tx\tID=7\tDD");
    QTest::newRow("empty") << QByteArray();
}

void RecordingTest::the_interval_of_an_invalid_line_is_lost()
{
    QFETCH(QByteArray, line);
    StationBench bench;
    discharge_for_a_while(bench);
    const TestCycle& cycle = *bench.station->current_cycle;
    const QByteArray csv = bench.csv();
    bench.clock.advance_seconds(360.0);
    QVERIFY(bench.wire.send(line, *bench.instrument));
    QCOMPARE(cycle.amp_hours, 2.5);
    QCOMPARE(bench.csv(), csv);

    bench.receive_after(180.0, "40.00", "10.0", "D");
    QCOMPARE(cycle.amp_hours, 3.0);
    QCOMPARE(cycle.watt_hours, 120.0);
}

void RecordingTest::a_gap_counts_with_the_reading_behind_it()
{
    StationBench bench;
    discharge_for_a_while(bench);
    const TestCycle& cycle = *bench.station->current_cycle;
    const int samples_before = cycle.voltage_vs_amphours.points.size();
    bench.receive_after(7200.0, "38.00", "1.0", "D");
    QCOMPARE(cycle.amp_hours, 4.5);
    QCOMPARE(cycle.watt_hours, 176.0);
    QCOMPARE(cycle.voltage_vs_amphours.points.size(), samples_before + 1);
}

void RecordingTest::a_reading_that_is_no_number_is_taken_as_it_comes()
{
    StationBench bench;
    discharge_for_a_while(bench);
    bench.receive("nan", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive("inf", "10.0", "D");
    bench.receive("1e308", "1e308", "D");
    bench.receive("40.00", "nan", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive("-inf", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    QCOMPARE(events(bench).last(),
             QString("Switching to phase Charging (final) because voltage (-inf) < "
                     "low_voltage_cutoff (19)"));
}

void RecordingTest::the_totals_are_those_of_the_current_cycle()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING, 1);
    QCOMPARE(bench.station->cycles.size(), 2);
    const double first = bench.station->cycles.first()->amp_hours;
    bench.receive_after(180.0, "40.00", "5.0", "D");
    QCOMPARE(bench.station->cycles.first()->amp_hours, first);
    QCOMPARE(bench.station->cycles.last()->amp_hours, 10.0 / 3600.0 + 0.25);
    QCOMPARE(bench.station->cycles.first()->voltage_vs_amphours.points.size(), 1);
    QCOMPARE(bench.station->cycles.last()->voltage_vs_amphours.points.size(), 2);
}

KEST_TEST(RecordingTest)
#include "tst_recording.moc"
