#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include <QCheckBox>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

/** Parameters and the number of cycles, changed while a test runs. */
class RunningEditsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_number_of_cycles_is_taken_over_data();
    void the_number_of_cycles_is_taken_over();
    void a_change_of_cycles_ends_the_final_charge_data();
    void a_change_of_cycles_ends_the_final_charge();
    void cycles_added_in_the_last_discharge_move_the_decision();
    void cycles_taken_away_move_it_back();
    void each_field_is_taken_over_at_once_data();
    void each_field_is_taken_over_at_once();
    void a_half_can_be_typed();
    void a_shorter_time_ends_the_charge();
    void a_higher_cutoff_ends_the_discharge();
    void a_cleared_cutoff_ends_nothing();
    void another_final_voltage_counts_at_the_next_check();
    void a_prompt_ticked_in_the_charge_counts();
    void a_section_shows_the_parameters_of_its_begin();
};

namespace
{
/** The parameter behind a field of the panel. */
double parameter(const TestStation& station, const QString& field)
{
    if (field == "leMaxChargeTime")
        return station.max_charge_time;
    if (field == "leLowVoltageCutoff")
        return station.low_voltage_cutoff;
    if (field == "leFinalCharge")
        return station.final_voltage;
    return station.internal_resistance_test_interval_ah;
}
}  // namespace

void RunningEditsTest::the_number_of_cycles_is_taken_over_data()
{
    add_all_phases();
}

void RunningEditsTest::the_number_of_cycles_is_taken_over()
{
    QFETCH(int, phase);
    StationBench bench;
    bring_to(bench, Phase(phase));
    bench.widget<QPushButton>("pbSaveProfile")->setEnabled(false);
    bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(5);
    QCOMPARE(bench.station->number_of_cycles, 5);
    const int expected = phase == PHASE_FINAL_CHARGE ? PHASE_CHARGING : phase;
    QCOMPARE(int(bench.station->phase), expected);
    const QString cycle = QString("Cycle %1/5").arg(bench.station->get_cycle_number());
    QCOMPARE(bench.text("laCycleNumber"), cycle);
    QVERIFY(bench.widget<QPushButton>("pbSaveProfile")->isEnabled());
}

void RunningEditsTest::a_change_of_cycles_ends_the_final_charge_data()
{
    QTest::addColumn<int>("step");
    QTest::newRow("one more") << 1;
    QTest::newRow("one less") << -1;
}

void RunningEditsTest::a_change_of_cycles_ends_the_final_charge()
{
    QFETCH(int, step);
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE, 1);
    const QByteArray csv = bench.csv();
    bench.wire.commands();
    bench.clock.advance_seconds(60.0);
    bench.widget<QSpinBox>("sbNumberOfCycles")->stepBy(step);
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(events(bench).last(),
             QString("Switching to phase Charging because user added a cycle"));
    QCOMPARE(bench.station->leg_start_time, bench.clock.now);
    QVERIFY(bench.csv().mid(csv.size()).startsWith("Charge Number:               3\n"));
    // The charger is on already.
    QCOMPARE(bench.wire.commands(), QByteArray());
    bench.receive_after(301.0, "41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
}

void RunningEditsTest::cycles_added_in_the_last_discharge_move_the_decision()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.widget<QSpinBox>("sbNumberOfCycles")->stepUp();
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive("18.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
}

void RunningEditsTest::cycles_taken_away_move_it_back()
{
    StationBench bench;
    bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(2);
    bench.receive("41.50", "0.0", "O");
    bench.start();
    bench.press("pbStartSkip");
    bench.receive("40.00", "10.0", "D");
    bench.widget<QSpinBox>("sbNumberOfCycles")->stepDown();
    bench.receive("18.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
}

void RunningEditsTest::each_field_is_taken_over_at_once_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("saved");
    add_row("hours", "leMaxChargeTime", "2", 7200.0, true);
    add_row("half hours", "leMaxChargeTime", "1.5", 5400.0, true);
    add_row("cut to whole seconds", "leMaxChargeTime", "0.7", 2520.0, true);
    add_row("cutoff", "leLowVoltageCutoff", "18.125", 18.125, true);
    add_row("final voltage", "leFinalCharge", "37.5", 37.5, true);
    add_row("negative final voltage", "leFinalCharge", "-1", -1.0, true);
    add_row("interval", "leInternalResistanceTestIntervalAh", "0.2", 0.2, true);
    // What is no number leaves the time and makes the others zero.
    add_row("charge time cleared", "leMaxChargeTime", "", 21600.0, false);
    add_row("cutoff cleared", "leLowVoltageCutoff", "", 0.0, false);
    add_row("final voltage cleared", "leFinalCharge", "", 0.0, false);
    add_row("final voltage in words", "leFinalCharge", "full", 0.0, false);
    add_row("decimal comma", "leFinalCharge", ",", 0.0, false);
    add_row("interval cleared", "leInternalResistanceTestIntervalAh", "", 0.0, false);
}

void RunningEditsTest::each_field_is_taken_over_at_once()
{
    QFETCH(QString, field);
    QFETCH(QString, text);
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->final_voltage = 12.0;
    bench.widget<QPushButton>("pbSaveProfile")->setEnabled(false);
    bench.type(qPrintable(field), text);
    QTEST(parameter(*bench.station, field), "value");
    QTEST(bench.widget<QPushButton>("pbSaveProfile")->isEnabled(), "saved");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void RunningEditsTest::a_half_can_be_typed()
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    {
        StationBench bench;
        bench.type("leInternalResistanceTestIntervalAh", "0.3");
        QCOMPARE(bench.station->internal_resistance_test_interval_ah, 0.3);
        bench.type("leLowVoltageCutoff", "18.5");
        QCOMPARE(bench.station->low_voltage_cutoff, 18.5);
    }
    QLocale::setDefault(before);
}

void RunningEditsTest::a_shorter_time_ends_the_charge()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    bench.receive_after(3600.0, "41.50", "1.0", "C");
    bench.type("leMaxChargeTime", "1");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive("41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

void RunningEditsTest::a_higher_cutoff_ends_the_discharge()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.type("leLowVoltageCutoff", "40.5");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive("40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
}

void RunningEditsTest::a_cleared_cutoff_ends_nothing()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.type("leLowVoltageCutoff", "");
    bench.receive("10.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.type("leLowVoltageCutoff", "19");
    bench.receive("10.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
}

void RunningEditsTest::another_final_voltage_counts_at_the_next_check()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE_TEST);
    bench.type("leFinalCharge", "41.5");
    bench.receive("41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    bench.receive_after(301.0, "41.00", "1.0", "C");
    bench.type("leFinalCharge", "40");
    bench.receive("41.00", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_DONE);
}

void RunningEditsTest::a_prompt_ticked_in_the_charge_counts()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    bench.widget<QCheckBox>("cbPromptToDischarge")->click();
    bench.receive_after(21600.0, "41.50", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_READY_FOR_DISCHARGE);
    // Unticked, it waits all the same: only the operator leaves.
    bench.widget<QCheckBox>("cbPromptToDischarge")->click();
    bench.receive("41.50", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_READY_FOR_DISCHARGE);
}

void RunningEditsTest::a_section_shows_the_parameters_of_its_begin()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    bench.type("leMaxChargeTime", "1.5");
    bench.type("leLowVoltageCutoff", "18.5");
    bench.type("leFinalCharge", "37.5");
    bench.widget<QCheckBox>("cbPromptToDischarge")->click();
    bench.widget<QCheckBox>("cbMeasureInternalResistance")->click();
    bench.press("pbStartSkip");
    const QByteArray csv = bench.csv();
    const int discharge = csv.indexOf("Discharge Number:");
    QVERIFY(csv.left(discharge).contains("Max Charge Time (h):         6\n"));
    QCOMPARE(csv.mid(discharge), QByteArray("Discharge Number:            1\n"
                                            "Timestamp:                   2020-04-03 09:15:02\n"
                                            "Max Charge Time (h):         1\n"
                                            "Detect Full Charge:          No\n"
                                            "Low Voltage Cutoff (V):      18.5\n"
                                            "Prompt to Discharge:         Yes\n"
                                            "Final Charge (V):            37.5\n"
                                            "Measure Internal Resistance: No\n"
                                            "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),"
                                            "IR (mOhms)\n"));
}

KEST_TEST(RunningEditsTest)
#include "tst_running_edits.moc"
