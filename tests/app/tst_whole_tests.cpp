#include "support/test_program.h"
#include "support/whole_test.h"

#include "config/settings.h"
#include "station/test_station.h"

#include <QCheckBox>
#include <QLabel>
#include <QSpinBox>
#include <QtTest>

/** Tests from Start to Done, second by second: all that is commanded and all that is logged. */
class WholeTestsTest : public QObject
{
    Q_OBJECT

private slots:
    void one_cycle_as_the_panel_is_filled_in();
    void three_cycles();
    void a_prompt_stands_before_each_discharge_but_the_second();
    void a_full_charge_is_detected_and_doubted_once();
    void the_final_charge_ends_at_its_voltage();
    void the_final_charge_ends_at_its_time();
    void time_and_voltage_check_of_the_final_charge_fall_on_one_line();
    void raw_telemetry_stands_in_the_event_log();
};

namespace
{
void untick(StationBench& bench, const char* box)
{
    if (bench.widget<QCheckBox>(box)->isChecked())
        bench.widget<QCheckBox>(box)->click();
}
}  // namespace

void WholeTestsTest::one_cycle_as_the_panel_is_filled_in()
{
    PackModel pack = WholeTest::quick_pack();
    pack.capacity_ah = 0.25;
    pack.state_of_charge = 0.5;
    WholeTest test(pack);
    test.bench.type("leMaxChargeTime", "0.1");
    test.bench.type("leLowVoltageCutoff", "19.5");
    test.bench.type("leInternalResistanceTestIntervalAh", "0.1");
    test.start("Pack A", "1042");
    QVERIFY(test.run_to(PHASE_DONE));
    test.run(2);
    QCOMPARE(test.difference_from("one_cycle"), QString());
    QCOMPARE(test.bench.widget<QLabel>("laCummAmpHours")->text(), QString("0.24 Ah"));
    QCOMPARE(test.bench.widget<QLabel>("laCummWattHours")->text(), QString("5.20 Wh"));
    QCOMPARE(test.bench.widget<QLabel>("laIntResistance")->text(),
             QString::fromUtf8("150 m\u2126"));
    QVERIFY(test.bench.answers.seen.empty());
}

void WholeTestsTest::three_cycles()
{
    WholeTest test;
    test.station.max_charge_time = 20;
    untick(test.bench, "cbMeasureInternalResistance");
    test.bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(3);
    test.bench.answers.click(QMessageBox::Yes);
    test.start();
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("three_cycles"), QString());
    QCOMPARE(test.station.cycles.size(), 3);
    QCOMPARE(test.bench.answers.seen.size(), size_t(1));
    QCOMPARE(test.bench.answers.seen[0].text,
             QString("Max charge time is < 1 minute. Continue anyway?"));
}

void WholeTestsTest::a_prompt_stands_before_each_discharge_but_the_second()
{
    WholeTest test;
    untick(test.bench, "cbMeasureInternalResistance");
    test.bench.widget<QCheckBox>("cbPromptToDischarge")->click();
    test.bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(3);
    test.start();
    test.station.max_charge_time = 20;
    for (int prompt = 0; prompt < 2; ++prompt) {
        QVERIFY(test.run_to(PHASE_READY_FOR_DISCHARGE));
        test.run(10);
        QCOMPARE(test.station.phase, PHASE_READY_FOR_DISCHARGE);
        test.press("pbStartSkip");
        QCOMPARE(test.station.phase, PHASE_DISCHARGING);
    }
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("prompt_to_discharge"), QString());
}

void WholeTestsTest::a_full_charge_is_detected_and_doubted_once()
{
    WholeTest test;
    test.station.detect_full_charge = true;
    untick(test.bench, "cbMeasureInternalResistance");
    test.start();
    QVERIFY(test.run_to(PHASE_CHARGING_LEVELED));
    test.link.set_fault("slow 3");
    QVERIFY(test.run_to(PHASE_FULL_CHARGE_TEST));
    // A pack that rises without its charger is not yet full.
    test.link.set_fault("field 1 25.30 1");
    test.run(3);
    QCOMPARE(test.station.phase, PHASE_CHARGING_LEVELED);
    QVERIFY(test.run_to(PHASE_DISCHARGING));
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_FINAL_CHARGE);
    test.run(1);
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_DONE);
    QCOMPARE(test.difference_from("full_charge_detection"), QString());
}

void WholeTestsTest::the_final_charge_ends_at_its_voltage()
{
    PackModel pack = WholeTest::quick_pack();
    pack.capacity_ah = 1.0;
    pack.state_of_charge = 0.05;
    WholeTest test(pack);
    test.bench.type("leFinalCharge", "23.1");
    test.start();
    test.run(1);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_FINAL_CHARGE));
    test.link.set_fault("slow 3");
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("final_charge_voltage"), QString());
}

void WholeTestsTest::the_final_charge_ends_at_its_time()
{
    WholeTest test;
    test.station.max_charge_time = 60;
    test.bench.type("leFinalCharge", "30");
    test.start();
    test.run(1);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("final_charge_time"), QString());
}

void WholeTestsTest::time_and_voltage_check_of_the_final_charge_fall_on_one_line()
{
    WholeTest test;
    test.bench.type("leFinalCharge", "30");
    test.start();
    test.station.max_charge_time = 300;
    test.link.set_fault("slow 2");
    test.press("pbStartSkip");
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_FINAL_CHARGE_TEST));
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("final_charge_time_and_voltage"), QString());
}

void WholeTestsTest::raw_telemetry_stands_in_the_event_log()
{
    WholeTest test;
    Settings::set_log_all_telemetry(true);
    test.station.max_charge_time = 60;
    test.station.internal_resistance_test_interval_ah = 0.02;
    test.start();
    test.run(2);
    test.link.set_fault("garbage 1");
    test.run(1);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_FINAL_CHARGE));
    test.link.set_fault("silence 5");
    test.run(8);
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_DONE);
    test.run(2);
    QCOMPARE(test.difference_from("raw_telemetry"), QString());
}

KEST_TEST(WholeTestsTest)
#include "tst_whole_tests.moc"
