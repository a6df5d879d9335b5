#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QPushButton>
#include <QtTest>

/** How a charge ends: by time, by a full pack, or, at last, by its voltage. */
class ChargeTest : public QObject
{
    Q_OBJECT

private slots:
    void a_level_needs_a_whole_window_data();
    void a_level_needs_a_whole_window();
    void the_window_is_that_of_the_newest_samples();
    void a_rise_over_minutes_is_told_data();
    void a_rise_over_minutes_is_told();
    void the_maximum_time_must_be_exceeded();
    void ten_minutes_of_level_lines_end_the_first_phase();
    void without_detection_only_time_ends_a_charge();
    void a_pack_that_is_not_full_is_charged_on();
    void the_full_charge_test_waits_for_the_charger();
    void the_maximum_time_counts_across_the_whole_leg();
    void a_charge_of_seconds_is_possible();
    void the_final_charge_is_checked_every_five_minutes();
    void a_storage_voltage_can_be_overshot();
    void the_final_charge_by_the_default_voltage_takes_one_check();
    void out_of_time_and_due_is_done_and_tested_data();
    void out_of_time_and_due_is_done_and_tested();
    void a_stale_timer_of_an_earlier_leg_means_nothing();
    void the_final_charge_test_needs_no_obedience();
};

namespace
{
void fill(TestStation& station, int samples, double first, double others, double last)
{
    for (int sample = 0; sample < samples; ++sample) {
        const double inner = sample == 0 ? first : others;
        station.charge_voltage_series.add(sample, sample == samples - 1 ? last : inner);
    }
}

QStringList new_events(StationBench& bench, int before)
{
    return events(bench).mid(before);
}
}  // namespace

void ChargeTest::a_level_needs_a_whole_window_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("first");
    QTest::addColumn<double>("last");
    QTest::addColumn<bool>("level");
    QTest::newRow("none at all") << 0 << 0.0 << 0.0 << false;
    QTest::newRow("one short") << 599 << 41.5 << 41.5 << false;
    QTest::newRow("just enough") << 600 << 41.5 << 41.5 << true;
    QTest::newRow("a rise of exactly 0.1") << 600 << 0.0 << 0.1 << true;
    QTest::newRow("a rise of just more") << 600 << 0.0 << 0.1001 << false;
    QTest::newRow("the least fall") << 600 << 41.5 << 41.49 << false;
    QTest::newRow("a great fall") << 600 << 41.5 << 12.0 << false;
}

void ChargeTest::a_level_needs_a_whole_window()
{
    QFETCH(int, samples);
    QFETCH(double, first);
    QFETCH(double, last);
    StationBench bench;
    // What lies between the ends of the window does not count.
    fill(*bench.station, samples, first, 99.0, last);
    QTEST(bench.station->voltage_has_leveled_off(), "level");
}

void ChargeTest::the_window_is_that_of_the_newest_samples()
{
    StationBench bench;
    TestStation& station = *bench.station;
    fill(station, 100, 12.0, 12.0, 12.0);
    fill(station, 599, 41.5, 41.5, 41.5);
    QVERIFY(!station.voltage_has_leveled_off());
    station.charge_voltage_series.add(700.0, 41.5);
    QVERIFY(station.voltage_has_leveled_off());
}

void ChargeTest::a_rise_over_minutes_is_told_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<int>("minutes");
    QTest::addColumn<bool>("told");
    QTest::addColumn<double>("delta");
    QTest::newRow("one short") << 59 << 1 << false << -1.0;
    QTest::newRow("just enough") << 60 << 1 << true << 59.0;
    QTest::newRow("of more") << 130 << 2 << true << 119.0;
    QTest::newRow("no minute has no samples") << 130 << 0 << false << -1.0;
    QTest::newRow("beyond all numbers") << 130 << 100000000 << false << -1.0;
}

void ChargeTest::a_rise_over_minutes_is_told()
{
    QFETCH(int, samples);
    QFETCH(int, minutes);
    StationBench bench;
    for (int sample = 0; sample < samples; ++sample)
        bench.station->charge_voltage_series.add(sample, sample);
    double delta = -1.0;
    QTEST(bench.station->delta_voltage(minutes, delta), "told");
    QTEST(delta, "delta");
}

void ChargeTest::the_maximum_time_must_be_exceeded()
{
    StationBench bench;
    TestStation& station = *bench.station;
    station.leg_start_time = bench.clock.now;
    station.max_charge_time = 60;
    bench.clock.advance_seconds(60.0);
    QVERIFY(!station.max_charge_time_exceeded());
    bench.clock.advance_seconds(0.001);
    QVERIFY(station.max_charge_time_exceeded());
}

void ChargeTest::ten_minutes_of_level_lines_end_the_first_phase()
{
    StationBench bench;
    bench.station->detect_full_charge = true;
    bench.receive("41.00", "0.0", "O");
    bench.start();
    bench.receive("41.00", "3.0", "C");
    for (int line = 2; line <= 599; ++line)
        bench.receive("41.02", "3.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive("41.05", "3.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING_LEVELED);
    QCOMPARE(bench.station->charge_voltage_series.points.size(), 600);
    QCOMPARE(last_rows(bench).size(), 600);
    QCOMPARE(bench.station->next_charge_test_timeout, bench.clock.now.addSecs(300));
}

void ChargeTest::without_detection_only_time_ends_a_charge()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    fill(*bench.station, 700, 41.5, 41.5, 41.5);
    for (int line = 0; line < 20; ++line)
        bench.receive_after(1000.0, "41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive_after(1600.0, "41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QVERIFY(events(bench).filter("leveled").isEmpty());
    QVERIFY(events(bench).filter("Full Charge Test").isEmpty());
}

void ChargeTest::a_pack_that_is_not_full_is_charged_on()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING_LEVELED);
    bench.wire.commands();
    const int before = events(bench).size();
    for (int round = 1; round <= 3; ++round) {
        bench.receive_after(301.0, "41.50", "1.0", "C");
        QCOMPARE(bench.station->phase, PHASE_FULL_CHARGE_TEST);
        QCOMPARE(bench.station->charge_test_voltage, 41.5);
        bench.receive("41.75", "0.0", "O");
        QCOMPARE(bench.station->phase, PHASE_CHARGING_LEVELED);
        QCOMPARE(bench.station->next_charge_test_timeout, bench.clock.now.addSecs(300));
        bench.receive("41.50", "1.0", "C");
        bench.receive("41.50", "1.0", "C");
    }
    bench.receive_after(301.0, "41.60", "0.5", "C");
    QCOMPARE(bench.station->charge_test_voltage, 41.6);
    bench.receive("41.50", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QStringList expected;
    for (int round = 1; round <= 3; ++round) {
        expected += "Switching to phase Full Charge Test because next_charge_test_timeout reached";
        expected += "Switching to phase Charging because charging voltage drop >= 0.1v";
    }
    expected += "Switching to phase Full Charge Test because next_charge_test_timeout reached";
    expected += "Switching to phase Discharging because charging voltage drop < 0.1v, "
                "prompt_to_discharge = false";
    QCOMPARE(new_events(bench, before), expected);
    // One section, whatever the rounds.
    QCOMPARE(bench.csv().count("Charge Number:"), 1);
}

void ChargeTest::the_full_charge_test_waits_for_the_charger()
{
    StationBench bench;
    bring_to(bench, PHASE_FULL_CHARGE_TEST);
    bench.wire.commands();
    bench.station->max_charge_time = 1;
    for (int line = 0; line < 10; ++line)
        bench.receive_after(3600.0, "12.00", "3.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FULL_CHARGE_TEST);
    QCOMPARE(bench.station->charge_test_voltage, 41.5);
    QCOMPARE(bench.wire.commands(), QByteArray("OOOOO"));
    QVERIFY(bench.instrument->get_stuck());
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    bench.receive("41.75", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_CHARGING_LEVELED);
    // Only there the time is looked at again.
    bench.receive("41.50", "3.0", "C");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void ChargeTest::the_maximum_time_counts_across_the_whole_leg()
{
    StationBench bench;
    bench.station->max_charge_time = 400;
    bring_to(bench, PHASE_FULL_CHARGE_TEST);
    bench.receive_after(60.0, "41.75", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_CHARGING_LEVELED);
    const int before = events(bench).size();
    // 303 seconds to the charge test, 60 in it, and these.
    bench.receive_after(37.0, "41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING_LEVELED);
    bench.receive("41.50", "1.0", "C");
    QCOMPARE(new_events(bench, before),
             QStringList{"Switching to phase Discharging because max charge time reached, "
                         "prompt_to_discharge = false"});
}

void ChargeTest::a_charge_of_seconds_is_possible()
{
    StationBench bench;
    bench.type("leMaxChargeTime", "0");
    bench.receive("41.50", "0.0", "O");
    bench.answers.click(QMessageBox::Yes);
    bench.start();
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive("41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QVERIFY(bench.csv().contains("Max Charge Time (h):         0\n"));
    QVERIFY(bench.csv().contains("Time (s),Voltage (V)\n1.0,41.50\nDischarge Number:"));
}

void ChargeTest::the_final_charge_is_checked_every_five_minutes()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.wire.commands();
    bench.type("leFinalCharge", "37.5");
    const int before = events(bench).size();
    for (const char* voltage : {"30.00", "35.00", "37.50", "38.00"}) {
        bench.receive_after(299.0, voltage, "1.0", "C");
        QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
        bench.receive_after(2.0, voltage, "1.0", "C");
        QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE_TEST);
        bench.receive(voltage, "1.0", "C");
    }
    QCOMPARE(bench.station->phase, PHASE_DONE);
    const QString test = "Switching to phase Final Charge Test because "
                         "next_charge_test_timeout reached";
    const QString on = "Switching to phase Charging (final) because voltage (%1) < final_voltage "
                       "(37.500)";
    const QString done = "Switching to phase Done because voltage (38.000) >= final_voltage "
                         "(37.500)";
    QCOMPARE(new_events(bench, before), (QStringList{test, on.arg("30.000"), test, on.arg("35.000"),
                                                     test, on.arg("37.500"), test, done}));
    // The charger stays on through the tests.
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    QCOMPARE(last_rows(bench).size(), 13);
}

void ChargeTest::a_storage_voltage_can_be_overshot()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.station->final_voltage = 37.5;
    for (int line = 0; line < 9; ++line)
        bench.receive_after(30.0, "41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
}

void ChargeTest::the_final_charge_by_the_default_voltage_takes_one_check()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.receive_after(299.001, "41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE_TEST);
    bench.receive("41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_DONE);
    QCOMPARE(events(bench).last(),
             QString("Switching to phase Done because voltage (41.000) >= final_voltage (0.000)"));
}

void ChargeTest::out_of_time_and_due_is_done_and_tested_data()
{
    QTest::addColumn<double>("final_voltage");
    QTest::addColumn<QStringList>("phases");
    QTest::newRow("voltage reached") << 0.0 << QStringList{"Done", "Final Charge Test", "Done"};
    QTest::newRow("voltage not reached")
        << 50.0 << QStringList{"Done", "Final Charge Test", "Charging (final)", "Done"};
}

void ChargeTest::out_of_time_and_due_is_done_and_tested()
{
    QFETCH(double, final_voltage);
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.station->max_charge_time = 60;
    bench.station->final_voltage = final_voltage;
    const int before = events(bench).size();
    bench.receive_after(301.0, "41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE_TEST);
    while (bench.station->phase != PHASE_DONE)
        bench.receive("41.00", "0.0", "O");
    QStringList seen;
    for (const QString& text : new_events(bench, before))
        seen += text.section(' ', 3).section(" because", 0, 0);
    QTEST(seen, "phases");
}

void ChargeTest::a_stale_timer_of_an_earlier_leg_means_nothing()
{
    StationBench bench;
    bring_to(bench, PHASE_FULL_CHARGE_TEST, 1);
    bench.station->number_of_cycles = 3;
    bench.receive("41.40", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive("40.00", "10.0", "D");
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive_after(600.0, "41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
}

void ChargeTest::the_final_charge_test_needs_no_obedience()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.receive_after(301.0, "41.00", "0.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE_TEST);
    bench.receive("41.00", "0.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DONE);
}

KEST_TEST(ChargeTest)
#include "tst_charge.moc"
