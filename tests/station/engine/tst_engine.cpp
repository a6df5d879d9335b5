#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "common/colors.h"
#include "device/kestrometer.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

/** How a phase begins, and what the instrument is told. */
class EngineTest : public QObject
{
    Q_OBJECT

private slots:
    void start_begins_the_first_charge();
    void the_button_follows_the_phase_data();
    void the_button_follows_the_phase();
    void a_disabled_button_keeps_its_text();
    void without_instrument_or_log_no_button_is_usable();
    void the_instrument_is_told_by_phase_data();
    void the_instrument_is_told_by_phase();
    void a_phase_that_commands_nothing_leaves_the_instrument_as_it_is();
    void a_charge_begins_a_new_leg();
    void a_levelled_charge_goes_on_in_its_leg();
    void the_final_charge_begins_a_new_leg();
    void the_final_charge_test_leaves_the_leg_alone();
    void a_discharge_begins_a_new_cycle();
    void a_new_cycle_takes_its_colour_and_axes();
    void the_recovery_returns_to_the_same_cycle();
    void the_label_of_the_next_cycle_counts_up();
    void the_resistance_tests_of_each_cycle_start_anew();
    void silence_freezes_the_test();
    void the_first_line_after_silence_sees_expired_times();
    void a_new_number_renames_the_finished_curves();
    void a_new_number_without_a_log_renames_nothing();
};

namespace
{
void add_phases_with(const char* column)
{
    QTest::addColumn<Phase>("phase");
    QTest::addColumn<QByteArray>(column);
}

int count_of(StationBench& bench, const char* text)
{
    return QString::fromUtf8(bench.csv()).count(text);
}
}  // namespace

void EngineTest::start_begins_the_first_charge()
{
    StationBench bench;
    bench.receive("41.50", "0.0", "O");
    bench.start();
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive("41.52", "1.0", "C");
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
    QCOMPARE(bench.csv(), QByteArray("Kestrometer Log\n"
                                     "Battery Name:  Pack A\n"
                                     "Serial Number: 1042\n"
                                     "Charge Number:               1\n"
                                     "Timestamp:                   2020-04-03 09:15:01\n"
                                     "Max Charge Time (h):         6\n"
                                     "Detect Full Charge:          No\n"
                                     "Low Voltage Cutoff (V):      19\n"
                                     "Prompt to Discharge:         No\n"
                                     "Final Charge (V):            0\n"
                                     "Measure Internal Resistance: Yes\n"
                                     "Software Version:            v1.0.0b1, Apr 03 2020\n"
                                     "IR Test Interval (Ah):       0.5\n"
                                     "Time (s),Voltage (V)\n"
                                     "1.0,41.52\n"));
    QCOMPARE(bench.txt(), QByteArray("2020-04-03 09:15:01 Switching to phase Charging because "
                                     "User clicked 'Start'.\n"));
    QVERIFY(bench.answers.seen.empty());
}

void EngineTest::the_button_follows_the_phase_data()
{
    add_phases_with("button");
    QTest::newRow("charging") << PHASE_CHARGING << QByteArray("Skip");
    QTest::newRow("charging on") << PHASE_CHARGING_LEVELED << QByteArray("Skip");
    QTest::newRow("full charge test") << PHASE_FULL_CHARGE_TEST << QByteArray("(Skip)");
    QTest::newRow("ready") << PHASE_READY_FOR_DISCHARGE << QByteArray("Start");
    QTest::newRow("discharging") << PHASE_DISCHARGING << QByteArray("Skip");
    QTest::newRow("resistance test") << PHASE_IR_TEST << QByteArray("(Skip)");
    QTest::newRow("recovery") << PHASE_IR_RECOVERY << QByteArray("(Skip)");
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE << QByteArray("Skip");
    QTest::newRow("final charge test") << PHASE_FINAL_CHARGE_TEST << QByteArray("(Skip)");
    QTest::newRow("done") << PHASE_DONE << QByteArray("Start");
}

void EngineTest::the_button_follows_the_phase()
{
    QFETCH(Phase, phase);
    StationBench bench;
    bring_to(bench, phase);
    const auto* button = bench.widget<QPushButton>("pbStartSkip");
    const QString seen = button->isEnabled() ? button->text() : '(' + button->text() + ')';
    QTEST(seen.toUtf8(), "button");
}

void EngineTest::a_disabled_button_keeps_its_text()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    // Done and the charge test come on one line: the button keeps what Done has made of it.
    bench.station->max_charge_time = 60;
    bench.receive_after(301.0, "41.00", "0.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE_TEST);
    QCOMPARE(bench.widget<QPushButton>("pbStartSkip")->text(), QString("Start"));
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
}

void EngineTest::without_instrument_or_log_no_button_is_usable()
{
    StationBench bench;
    auto* button = bench.widget<QPushButton>("pbStartSkip");
    bench.station->set_phase(PHASE_READY_FOR_DISCHARGE, "no log is open");
    QCOMPARE(button->text(), QString("Start"));
    QVERIFY(!button->isEnabled());
    bench.station->set_phase(PHASE_CHARGING_LEVELED, "no log is open");
    QCOMPARE(button->text(), QString("Skip"));
    QVERIFY(button->isEnabled());

    TestStation preview(nullptr, nullptr);
    button = preview.findChild<QPushButton*>("pbStartSkip");
    preview.set_phase(PHASE_CHARGING_LEVELED, "there is no instrument");
    QCOMPARE(button->text(), QString("Skip"));
    QVERIFY(!button->isEnabled());
    preview.data_log = new QFile(bench.path("preview.csv"));
    preview.set_phase(PHASE_DONE, "there is no instrument");
    QCOMPARE(button->text(), QString("Start"));
    QVERIFY(!button->isEnabled());
}

void EngineTest::the_instrument_is_told_by_phase_data()
{
    add_phases_with("command");
    QTest::newRow("idle") << PHASE_IDLE << QByteArray("O");
    QTest::newRow("charging") << PHASE_CHARGING << QByteArray("C");
    QTest::newRow("charging on") << PHASE_CHARGING_LEVELED << QByteArray("C");
    QTest::newRow("full charge test") << PHASE_FULL_CHARGE_TEST << QByteArray("O");
    QTest::newRow("ready") << PHASE_READY_FOR_DISCHARGE << QByteArray("O");
    QTest::newRow("discharging") << PHASE_DISCHARGING << QByteArray("D");
    QTest::newRow("resistance test") << PHASE_IR_TEST << QByteArray("O");
    QTest::newRow("recovery") << PHASE_IR_RECOVERY << QByteArray("D");
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE << QByteArray("C");
    QTest::newRow("final charge test") << PHASE_FINAL_CHARGE_TEST << QByteArray();
    QTest::newRow("done") << PHASE_DONE << QByteArray("O");
}

void EngineTest::the_instrument_is_told_by_phase()
{
    QFETCH(Phase, phase);
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    bench.wire.commands();
    // As after a restart of the instrument: no command agrees with what it reports.
    bench.instrument->state = Unknown;
    bench.station->set_phase(phase, "the test says so");
    QTEST(bench.wire.commands(), "command");
}

void EngineTest::a_phase_that_commands_nothing_leaves_the_instrument_as_it_is()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.wire.commands();
    bench.receive_after(301.0, "41.00", "0.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE_TEST);
    QCOMPARE(bench.instrument->requested_state, Charging);
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void EngineTest::a_charge_begins_a_new_leg()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    TestStation& station = *bench.station;
    station.charge_voltage_series.add(17.0, 41.0);
    bench.clock.advance_seconds(100.0);
    station.set_phase(PHASE_CHARGING, "the test says so");
    QVERIFY(station.charge_voltage_series.points.isEmpty());
    QCOMPARE(station.leg_start_time, bench.clock.now);
    QVERIFY(station.next_charge_test_timeout.isNull());
    QCOMPARE(events(bench).last(), QString("Switching to phase Charging because the test says so"));
    QCOMPARE(count_of(bench, "Charge Number:               1\n"), 2);
    QCOMPARE(last_rows(bench), QStringList());
}

void EngineTest::a_levelled_charge_goes_on_in_its_leg()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    TestStation& station = *bench.station;
    const QDateTime leg_start = station.leg_start_time;
    const int samples = station.charge_voltage_series.points.size();
    bench.clock.advance_seconds(100.0);
    station.set_phase(PHASE_CHARGING_LEVELED, "the test says so");
    QCOMPARE(station.next_charge_test_timeout, bench.clock.now.addSecs(300));
    QCOMPARE(station.leg_start_time, leg_start);
    QCOMPARE(station.charge_voltage_series.points.size(), samples);
    QCOMPARE(count_of(bench, "Charge Number:"), 1);
}

void EngineTest::the_final_charge_begins_a_new_leg()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    TestStation& station = *bench.station;
    station.charge_voltage_series.add(17.0, 41.0);
    bench.clock.advance_seconds(100.0);
    bench.press("pbStartSkip");
    QCOMPARE(station.phase, PHASE_FINAL_CHARGE);
    QVERIFY(station.charge_voltage_series.points.isEmpty());
    QCOMPARE(station.leg_start_time, bench.clock.now);
    QCOMPARE(station.next_charge_test_timeout, bench.clock.now.addSecs(300));
    QCOMPARE(count_of(bench, "Charge Number:               2\n"), 1);
}

void EngineTest::the_final_charge_test_leaves_the_leg_alone()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE_TEST);
    TestStation& station = *bench.station;
    station.final_voltage = 50.0;
    const QDateTime leg_start = station.leg_start_time;
    bench.receive("41.00", "0.0", "C");
    QCOMPARE(station.phase, PHASE_FINAL_CHARGE);
    QCOMPARE(station.leg_start_time, leg_start);
    QCOMPARE(station.charge_voltage_series.points.size(), 3);
    QCOMPARE(station.next_charge_test_timeout, bench.clock.now.addSecs(300));
    QCOMPARE(count_of(bench, "Charge Number:               2\n"), 1);
    QCOMPARE(last_rows(bench), (QStringList{"1.0,41.00", "302.0,41.00", "303.0,41.00"}));
}

void EngineTest::a_discharge_begins_a_new_cycle()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    TestStation& station = *bench.station;
    station.internal_resistance_test_interval_ah = 0.75;
    QSignalSpy cycles_changed(&station, &TestStation::sig_max_cycle_change);
    bench.clock.advance_seconds(100.0);
    bench.press("pbStartSkip");
    QCOMPARE(station.cycles.size(), 1);
    QCOMPARE(station.current_cycle, station.cycles.last());
    QCOMPARE(station.leg_start_time, bench.clock.now);
    QCOMPARE(station.current_cycle->start_time, bench.clock.now);
    QCOMPARE(station.next_ir_check_ah, 0.75);
    QVERIFY(station.charge_voltage_series.points.isEmpty());
    QVERIFY(bench.csv().contains("Discharge Number:            1\n"
                                 "Timestamp:                   2020-04-03 09:16:42\n"));
    // Once with the cycle, once more when the discharge stands.
    QCOMPARE(cycles_changed.count(), 2);
}

void EngineTest::a_new_cycle_takes_its_colour_and_axes()
{
    StationBench bench;
    bench.station->color_combobox.setCurrentIndex(5);
    bring_to(bench, PHASE_DISCHARGING);
    const TestCycle& cycle = *bench.station->current_cycle;
    const QPen pen(Colors::resistor_color_code[5]);
    QCOMPARE(cycle.voltage_vs_amphours.pen, pen);
    QCOMPARE(cycle.current_vs_amphours.pen, pen);
    QCOMPARE(cycle.internal_resistance.pen, pen);
    QCOMPARE(cycle.voltage_vs_amphours.x_axis, &TestStation::voltage_vs_amphours_chart.bottom_axis);
    QCOMPARE(cycle.voltage_vs_amphours.y_axis, &TestStation::voltage_vs_amphours_chart.left_axis);
    QCOMPARE(cycle.current_vs_amphours.x_axis, &TestStation::current_vs_amphours_chart.bottom_axis);
    QCOMPARE(cycle.current_vs_amphours.y_axis, &TestStation::current_vs_amphours_chart.left_axis);
    QCOMPARE(cycle.internal_resistance.x_axis, &TestStation::internal_resistance_chart.bottom_axis);
    QCOMPARE(cycle.internal_resistance.y_axis, &TestStation::internal_resistance_chart.left_axis);
}

void EngineTest::the_recovery_returns_to_the_same_cycle()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_RECOVERY);
    TestStation& station = *bench.station;
    const QDateTime leg_start = station.leg_start_time;
    QSignalSpy cycles_changed(&station, &TestStation::sig_max_cycle_change);
    bench.receive("40.00", "10.0", "D");
    QCOMPARE(station.phase, PHASE_DISCHARGING);
    QCOMPARE(station.cycles.size(), 1);
    QCOMPARE(station.leg_start_time, leg_start);
    QCOMPARE(station.next_ir_check_ah, 1.0);
    QCOMPARE(count_of(bench, "Discharge Number:"), 1);
    QCOMPARE(cycles_changed.count(), 0);
}

void EngineTest::the_label_of_the_next_cycle_counts_up()
{
    QString shown_when_told;
    StationBench bench;
    const auto* label = bench.widget<QLabel>("laCycleNumber");
    bring_to(bench, PHASE_CHARGING, 1);
    QCOMPARE(label->text(), QString("Cycle 1/2"));
    connect(bench.station.get(), &TestStation::sig_max_cycle_change, label,
            [label, &shown_when_told] { shown_when_told = label->text(); });
    bench.press("pbStartSkip");
    QCOMPARE(shown_when_told, QString("Cycle 2/2"));
    QCOMPARE(label->text(), QString("Cycle 2/2"));
}

void EngineTest::the_resistance_tests_of_each_cycle_start_anew()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING, 1);
    bench.station->next_ir_check_ah = 5.0;
    bench.station->number_of_cycles = 3;
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->next_ir_check_ah, 5.0);
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->next_ir_check_ah, 0.5);
    QCOMPARE(bench.station->current_cycle->amp_hours, 0.0);
}

void EngineTest::silence_freezes_the_test()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    const QByteArray csv = bench.csv();
    bench.clock.advance_seconds(90000.5);
    bench.station->slot_blink(true);
    bench.station->slot_blink(false);
    bench.station->update_ui();
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(bench.csv(), csv);
    // An invalid line breaks the silence, but not for the test.
    QVERIFY(bench.wire.send("garbage", *bench.instrument));
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(bench.csv(), csv);
}

void EngineTest::the_first_line_after_silence_sees_expired_times()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.clock.advance_seconds(90000.0);
    QVERIFY(bench.wire.send("garbage", *bench.instrument));
    const int before = events(bench).size();
    bench.receive("41.00", "0.0", "C");
    QCOMPARE(events(bench).mid(before),
             (QStringList{"Switching to phase Done because max charge time reached",
                          "Switching to phase Final Charge Test because "
                          "next_charge_test_timeout reached"}));
}

void EngineTest::a_new_number_renames_the_finished_curves()
{
    QStringList told;
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING, 1);
    for (TestCycle* cycle : bench.station->cycles)
        cycle->internal_resistance.name = "as it was";
    connect(bench.station.get(), &TestStation::sig_id_change, this, [&] { told += "id"; });
    connect(bench.station.get(), &TestStation::sig_repaint_chart_request, this,
            [&] { told += "repaint, " + bench.station->color_combobox.itemText(8); });
    QVERIFY(bench.wire.send("x\t40.00\t10.0\tx\tx\tID=0x1F\tD", *bench.instrument));
    for (const TestCycle* cycle : bench.station->cycles) {
        QCOMPARE(cycle->voltage_vs_amphours.name, QString("31"));
        QCOMPARE(cycle->current_vs_amphours.name, QString("31"));
        QCOMPARE(cycle->internal_resistance.name, QString("as it was"));
    }
    // The colours, which bear the number too, are filled anew afterwards.
    QCOMPARE(told.mid(0, 2), (QStringList{"id", "repaint, Station 7"}));
    QCOMPARE(told.filter("id").size(), 1);
    QCOMPARE(bench.station->get_id(), QString("Station 31"));
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void EngineTest::a_new_number_without_a_log_renames_nothing()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    QFile* log = bench.station->data_log;
    bench.station->data_log = nullptr;
    QSignalSpy told(bench.station.get(), &TestStation::sig_id_change);
    QVERIFY(bench.wire.send("x\t40.00\t10.0\tx\tx\tID=31\tD", *bench.instrument));
    bench.station->data_log = log;
    QCOMPARE(bench.instrument->id, 31);
    QCOMPARE(bench.station->current_cycle->voltage_vs_amphours.name, QString());
    QCOMPARE(told.count(), 0);
}

KEST_TEST(EngineTest)
#include "tst_engine.moc"
