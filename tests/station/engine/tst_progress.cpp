#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QFile>
#include <QLabel>
#include <QtTest>

/** What a station says about itself: its names, its phase, its cycle, its resistance. */
class ProgressTest : public QObject
{
    Q_OBJECT

private slots:
    void every_phase_has_its_text_data();
    void every_phase_has_its_text();
    void an_idle_station_says_what_it_waits_for();
    void ready_names_the_current_cycle_and_not_the_next_data();
    void ready_names_the_current_cycle_and_not_the_next();
    void only_a_charge_leg_counts_as_charging_data();
    void only_a_charge_leg_counts_as_charging();
    void the_cycle_number_is_the_place_of_the_current_cycle();
    void the_first_charge_has_no_cycle();
    void the_mean_resistance_is_that_of_all_points();
    void a_cycle_without_resistance_leaves_the_mean_of_the_others();
    void a_live_station_is_named_after_its_instrument();
    void previews_count_up_and_never_down();
    void a_new_station_has_the_defaults();
    void stations_are_listed_while_they_live();
    void a_dying_station_switches_off_before_the_port_closes();
};

namespace
{
TestCycle* add_cycle(TestStation& station, const QList<double>& milliohms)
{
    TestCycle* cycle = add_cycle(station);
    for (const double value : milliohms)
        cycle->internal_resistance.add(0.5, value);
    return cycle;
}
}  // namespace

void ProgressTest::every_phase_has_its_text_data()
{
    QTest::addColumn<Phase>("phase");
    QTest::addColumn<QString>("text");
    QTest::newRow("idle") << PHASE_IDLE << "Configure Test";
    QTest::newRow("charging") << PHASE_CHARGING << "Charging";
    QTest::newRow("charging on") << PHASE_CHARGING_LEVELED << "Charging";
    QTest::newRow("full charge test") << PHASE_FULL_CHARGE_TEST << "Full Charge Test";
    QTest::newRow("ready") << PHASE_READY_FOR_DISCHARGE << "Ready for 0th Discharge";
    QTest::newRow("discharging") << PHASE_DISCHARGING << "Discharging";
    QTest::newRow("resistance test") << PHASE_IR_TEST << "IR Test";
    QTest::newRow("recovery") << PHASE_IR_RECOVERY << "Recovering from IR Test";
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE << "Charging (final)";
    QTest::newRow("final charge test") << PHASE_FINAL_CHARGE_TEST << "Final Charge Test";
    QTest::newRow("done") << PHASE_DONE << "Done";
    QTest::newRow("beyond the last") << Phase(PHASE_DONE + 1) << "?";
}

void ProgressTest::every_phase_has_its_text()
{
    QFETCH(Phase, phase);
    StationBench bench;
    QTEST(bench.station->phase_to_string(phase), "text");
    if (phase > PHASE_DONE)
        return;
    bench.station->phase = phase;
    bench.station->update_ui();
    QTEST(bench.text("laPhase"), "text");
}

void ProgressTest::an_idle_station_says_what_it_waits_for()
{
    StationBench bench;
    QCOMPARE(bench.station->phase_to_string(PHASE_IDLE), QString("Configure Test"));
    TestStation preview(nullptr, nullptr);
    QCOMPARE(preview.phase_to_string(PHASE_IDLE), QString("Load Log File"));
    preview.data_log = new QFile(bench.path("Pack A_1042.csv"));
    QCOMPARE(preview.phase_to_string(PHASE_IDLE), QString("Preview"));
}

void ProgressTest::ready_names_the_current_cycle_and_not_the_next_data()
{
    QTest::addColumn<int>("cycles");
    QTest::addColumn<QString>("text");
    QTest::newRow("before the first") << 0 << "Ready for 0th Discharge";
    QTest::newRow("after 1") << 1 << "Ready for 1st Discharge";
    QTest::newRow("after 2") << 2 << "Ready for 2nd Discharge";
    QTest::newRow("after 3") << 3 << "Ready for 3rd Discharge";
    QTest::newRow("after 11") << 11 << "Ready for 11th Discharge";
    QTest::newRow("after 12") << 12 << "Ready for 12th Discharge";
    QTest::newRow("after 13") << 13 << "Ready for 13th Discharge";
    QTest::newRow("after 21") << 21 << "Ready for 21st Discharge";
}

void ProgressTest::ready_names_the_current_cycle_and_not_the_next()
{
    QFETCH(int, cycles);
    StationBench bench;
    for (int cycle = 0; cycle < cycles; ++cycle)
        add_cycle(*bench.station);
    QTEST(bench.station->phase_to_string(PHASE_READY_FOR_DISCHARGE), "text");
}

void ProgressTest::only_a_charge_leg_counts_as_charging_data()
{
    add_all_phases();
}

void ProgressTest::only_a_charge_leg_counts_as_charging()
{
    QFETCH(int, phase);
    StationBench bench;
    bench.station->phase = Phase(phase);
    QCOMPARE(bench.station->get_phase(), Phase(phase));
    QCOMPARE(bench.station->charging(), phase == PHASE_CHARGING ||
                                            phase == PHASE_CHARGING_LEVELED ||
                                            phase == PHASE_FINAL_CHARGE);
}

void ProgressTest::the_cycle_number_is_the_place_of_the_current_cycle()
{
    StationBench bench;
    TestCycle* first = add_cycle(*bench.station);
    TestCycle* second = add_cycle(*bench.station);
    QCOMPARE(bench.station->get_cycle_number(), 2);
    bench.station->current_cycle = first;
    QCOMPARE(bench.station->get_cycle_number(), 1);
    bench.station->cycles.removeAll(second);
    bench.station->current_cycle = second;
    QCOMPARE(bench.station->get_cycle_number(), 0);
    delete second;
}

void ProgressTest::the_first_charge_has_no_cycle()
{
    StationBench bench;
    QCOMPARE(bench.station->get_cycle_number(), 0);
    bring_to(bench, PHASE_CHARGING);
    QCOMPARE(bench.station->get_cycle_number(), 0);
    QVERIFY(bench.station->current_cycle == nullptr);
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->get_cycle_number(), 1);
}

void ProgressTest::the_mean_resistance_is_that_of_all_points()
{
    StationBench bench;
    QCOMPARE(bench.station->get_avg_internal_resistance_string(), in_milliohms("?"));
    add_cycle(*bench.station, {10.0, 10.0, 10.0});
    add_cycle(*bench.station, {30.0});
    // The mean of the two means would be 20.
    QCOMPARE(bench.station->get_avg_internal_resistance_string(), in_milliohms("15"));
    add_cycle(*bench.station, {479.5, 0.0});
    QCOMPARE(bench.station->get_avg_internal_resistance_string(), in_milliohms("90"));
}

void ProgressTest::a_cycle_without_resistance_leaves_the_mean_of_the_others()
{
    StationBench bench;
    add_cycle(*bench.station, {123.0, 124.0});
    const TestCycle* second = add_cycle(*bench.station);
    QCOMPARE(second->avg_internal_resistance_string(), in_milliohms("?"));
    QCOMPARE(bench.station->get_avg_internal_resistance_string(), in_milliohms("124"));
}

void ProgressTest::a_live_station_is_named_after_its_instrument()
{
    StationBench bench;
    QCOMPARE(bench.station->get_id(), QString("Station -1"));
    bench.receive("41.50", "0.0", "O");
    QCOMPARE(bench.station->get_id(), QString("Station 7"));
    QCOMPARE(bench.station->get_short_id(), QString("S7"));
    QCOMPARE(bench.station->get_port_name(), bench.wire.port_name());
}

void ProgressTest::previews_count_up_and_never_down()
{
    const int before = TestStation::num_previews;
    const StationBench bench;
    QCOMPARE(bench.station->preview_number, 0);
    TestStation first(nullptr, nullptr);
    QCOMPARE(first.preview_number, before + 1);
    QCOMPARE(first.get_id(), QString("Preview %1").arg(before + 1));
    QCOMPARE(first.findChild<QLabel*>("laStationID")->text(), QChar(0x2009) + first.get_id());
    QCOMPARE(first.get_short_id(), QString("P%1").arg(before + 1));
    QCOMPARE(first.get_port_name(), QString("Preview Only"));
    auto second = std::make_unique<TestStation>(nullptr, nullptr);
    QCOMPARE(second->preview_number, before + 2);
    second.reset();
    QCOMPARE(TestStation::num_previews, before + 2);
    const TestStation third(nullptr, nullptr);
    QCOMPARE(third.get_short_id(), QString("P%1").arg(before + 3));
}

void ProgressTest::a_new_station_has_the_defaults()
{
    StationBench bench;
    const TestStation& station = *bench.station;
    QCOMPARE(station.charge_test_interval, 300);
    QCOMPARE(station.prompt_to_discharge, false);
    QCOMPARE(station.detect_full_charge, false);
    QCOMPARE(station.measure_internal_resistance, true);
    QCOMPARE(station.internal_resistance_test_interval_ah, 0.5);
    QCOMPARE(station.max_charge_time, 21600);
    QCOMPARE(station.low_voltage_cutoff, 19.0);
    QCOMPARE(station.final_voltage, 0.0);
    QCOMPARE(station.number_of_cycles, 1);
    QCOMPARE(station.color, QColor(Qt::black));
    QCOMPARE(station.log_dir, bench.folder.path());
    QCOMPARE(station.phase, PHASE_IDLE);
    QVERIFY(station.profile_name.isEmpty() && station.serial_number.isEmpty());
    QVERIFY(!station.serial_number_edited);
    QVERIFY(station.data_log == nullptr && station.text_log == nullptr);
    QVERIFY(station.leg_start_time.isNull() && station.next_charge_test_timeout.isNull());
    QVERIFY(station.charge_voltage_series.points.isEmpty());
    QVERIFY(station.cycles.isEmpty() && station.current_cycle == nullptr);
}

void ProgressTest::stations_are_listed_while_they_live()
{
    StationBench bench;
    QCOMPARE(TestStation::all_instances, QList<TestStation*>{bench.station.get()});
    {
        TestStation preview(nullptr, nullptr);
        QCOMPARE(TestStation::all_instances, (QList<TestStation*>{bench.station.get(), &preview}));
    }
    QCOMPARE(TestStation::all_instances, QList<TestStation*>{bench.station.get()});
    bench.station.reset();
    QVERIFY(TestStation::all_instances.isEmpty());
}

void ProgressTest::a_dying_station_switches_off_before_the_port_closes()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    const QStringList before = events(bench);
    bench.wire.commands();
    bench.station.reset();
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    QCOMPARE(QString::fromUtf8(bench.file("Pack A_1042.txt")).count('\n'), before.size());
}

KEST_TEST(ProgressTest)
#include "tst_progress.moc"
