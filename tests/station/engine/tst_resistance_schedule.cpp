#include "resistance_steps.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QtTest>

/** When the tests of the internal resistance come, and when there are none. */
class ResistanceScheduleTest : public QObject
{
    Q_OBJECT

private slots:
    void an_overshoot_is_caught_up_test_by_test();
    void an_interval_of_zero_tests_without_end();
    void without_measurement_there_is_no_point();
    void a_new_interval_does_not_move_the_next_test();
    void ticking_measurement_sets_the_next_whole_interval_data();
    void ticking_measurement_sets_the_next_whole_interval();
    void ticking_measurement_without_an_interval_tests_at_once();
    void unticking_measurement_leaves_the_schedule_alone();
    void low_voltage_on_the_starting_line_leaves_no_point();
};

void ResistanceScheduleTest::an_overshoot_is_caught_up_test_by_test()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->current_cycle->amp_hours = 0.0;
    bench.receive_after(504.0, "40.00", "10.0", "D");
    for (const double next : {1.0, 1.5}) {
        QCOMPARE(bench.station->phase, PHASE_IR_TEST);
        complete_a_test(bench);
        QCOMPARE(bench.station->next_ir_check_ah, next);
    }
    // 1.4 amp-hours and some seconds: caught up.
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QCOMPARE(tests_begun(bench), 2);
    QCOMPARE(points_of(bench).size(), 2);
}

void ResistanceScheduleTest::an_interval_of_zero_tests_without_end()
{
    StationBench bench;
    bench.station->internal_resistance_test_interval_ah = 0.0;
    bring_to(bench, PHASE_CHARGING);
    bench.press("pbStartSkip");
    bench.receive("40.00", "10.0", "D");
    for (int test = 1; test <= 5; ++test) {
        QCOMPARE(bench.station->phase, PHASE_IR_TEST);
        QCOMPARE(bench.station->next_ir_check_ah, 0.0);
        complete_a_test(bench);
        QCOMPARE(points_of(bench).size(), test);
    }
    QCOMPARE(bench.station->phase, PHASE_IR_TEST);
}

void ResistanceScheduleTest::without_measurement_there_is_no_point()
{
    StationBench bench;
    bench.widget<QCheckBox>("cbMeasureInternalResistance")->click();
    bring_to(bench, PHASE_DISCHARGING);
    for (int line = 0; line < 5; ++line)
        bench.receive_after(3600.0, "40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QVERIFY(points_of(bench).isEmpty());
    QCOMPARE(bench.station->get_avg_internal_resistance_string(), QString("? m") + QChar(0x2126));
    QVERIFY(!bench.csv().contains("IR Test Interval"));
    QVERIFY(bench.csv().contains("Measure Internal Resistance: No\n"));
}

void ResistanceScheduleTest::a_new_interval_does_not_move_the_next_test()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->current_cycle->amp_hours = 0.0;
    bench.type("leInternalResistanceTestIntervalAh", "0.2");
    QCOMPARE(bench.station->next_ir_check_ah, 0.5);
    bench.receive_after(90.0, "40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive_after(90.0, "40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_IR_TEST);
    complete_a_test(bench);
    QCOMPARE(bench.station->next_ir_check_ah, 0.7);
}

void ResistanceScheduleTest::ticking_measurement_sets_the_next_whole_interval_data()
{
    QTest::addColumn<double>("amp_hours");
    QTest::addColumn<double>("next");
    QTest::newRow("nothing delivered") << 0.0 << 0.0;
    QTest::newRow("between") << 1.2 << 1.5;
    QTest::newRow("exactly on one") << 1.5 << 1.5;
    QTest::newRow("just beyond") << 1.501 << 2.0;
}

void ResistanceScheduleTest::ticking_measurement_sets_the_next_whole_interval()
{
    QFETCH(double, amp_hours);
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    auto* box = bench.widget<QCheckBox>("cbMeasureInternalResistance");
    box->click();
    bench.station->current_cycle->amp_hours = amp_hours;
    box->click();
    QTEST(bench.station->next_ir_check_ah, "next");
}

void ResistanceScheduleTest::ticking_measurement_without_an_interval_tests_at_once()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    auto* box = bench.widget<QCheckBox>("cbMeasureInternalResistance");
    bench.type("leInternalResistanceTestIntervalAh", "0");
    box->click();
    box->click();
    bench.receive("40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_IR_TEST);
    // The schedule stays a number that a new interval can go on from.
    bench.type("leInternalResistanceTestIntervalAh", "0.5");
    complete_a_test(bench);
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void ResistanceScheduleTest::unticking_measurement_leaves_the_schedule_alone()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->current_cycle->amp_hours = 3.2;
    bench.widget<QCheckBox>("cbMeasureInternalResistance")->click();
    QCOMPARE(bench.station->next_ir_check_ah, 0.5);
    bench.receive("40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void ResistanceScheduleTest::low_voltage_on_the_starting_line_leaves_no_point()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.wire.commands();
    bench.receive_after(180.0, "18.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    QCOMPARE(bench.wire.commands(), QByteArray("OC"));
    bench.receive("19.50", "0.0", "O");
    bench.receive("20.00", "0.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    QVERIFY(points_of(bench).isEmpty());
    QCOMPARE(last_rows(bench), (QStringList{"1.0,19.50", "2.0,20.00"}));
}

KEST_TEST(ResistanceScheduleTest)
#include "tst_resistance_schedule.moc"
