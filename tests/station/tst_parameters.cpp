#include "station/test_station.h"
#include "support/read_log.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QSpinBox>
#include <QtTest>

/** The parameters of a test: as one value, and on their way into the panel's controls. */
class ParametersTest : public QObject
{
    Q_OBJECT

private slots:
    void a_station_gives_the_parameters_that_it_took();
    void a_new_station_has_the_default_parameters();
    void parameters_reach_their_controls_data();
    void parameters_reach_their_controls();
    void the_prompt_box_follows_the_other_flag_data();
    void the_prompt_box_follows_the_other_flag();
    void a_broken_hour_is_shown_truncated_and_kept();
};

void ParametersTest::a_station_gives_the_parameters_that_it_took()
{
    StationBench bench;
    TestStation& station = *bench.station;
    TestParameters given{7, 5400, true, 30.5, true, 37.5, false, 0.25};
    for (int round = 0; round < 2; ++round) {
        station.take(given);
        QCOMPARE(station.number_of_cycles, given.number_of_cycles);
        QCOMPARE(station.max_charge_time, given.max_charge_time);
        QCOMPARE(station.detect_full_charge, given.detect_full_charge);
        QCOMPARE(station.low_voltage_cutoff, given.low_voltage_cutoff);
        QCOMPARE(station.prompt_to_discharge, given.prompt_to_discharge);
        QCOMPARE(station.final_voltage, given.final_voltage);
        QCOMPARE(station.measure_internal_resistance, given.measure_internal_resistance);
        QCOMPARE(station.internal_resistance_test_interval_ah,
                 given.internal_resistance_test_interval_ah);
        QVERIFY(same_parameters(station.parameters(), given));
        given = {2, 60, false, 8.0, true, 9.0, true, 0.125};
    }
}

void ParametersTest::a_new_station_has_the_default_parameters()
{
    const StationBench bench;
    QVERIFY(same_parameters(bench.station->parameters(), TestParameters()));
}

void ParametersTest::parameters_reach_their_controls_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("whole") << 19.0 << "19";
    QTest::newRow("broken") << 37.5 << "37.5";
    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("six digits") << 12.3456789 << "12.3457";
    QTest::newRow("large") << 1234567.0 << "1.23457e+06";
    QTest::newRow("small") << 0.00001 << "1e-05";
}

void ParametersTest::parameters_reach_their_controls()
{
    QFETCH(double, value);
    QFETCH(QString, text);
    StationBench bench;
    TestStation& station = *bench.station;
    station.profile_name = "Pack A";
    station.serial_number = "1042";
    station.number_of_cycles = 12;
    station.max_charge_time = 8 * 3600;
    station.low_voltage_cutoff = value;
    station.final_voltage = value;
    station.measure_internal_resistance = false;
    station.internal_resistance_test_interval_ah = value;
    station.populate_ui();
    QCOMPARE(bench.widget<QLineEdit>("leProfileName")->text(), QString("Pack A"));
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString("1042"));
    QCOMPARE(bench.widget<QSpinBox>("sbNumberOfCycles")->value(), 12);
    QCOMPARE(bench.widget<QLineEdit>("leMaxChargeTime")->text(), QString("8"));
    QCOMPARE(bench.widget<QLineEdit>("leLowVoltageCutoff")->text(), text);
    QCOMPARE(bench.widget<QLineEdit>("leFinalCharge")->text(), text);
    QCOMPARE(bench.widget<QLineEdit>("leInternalResistanceTestIntervalAh")->text(), text);
    QVERIFY(!bench.widget<QCheckBox>("cbMeasureInternalResistance")->isChecked());
    // The members are as they were: a text that code sets is no edit.
    QCOMPARE(station.low_voltage_cutoff, value);
    QVERIFY(!station.serial_number_edited);
}

void ParametersTest::the_prompt_box_follows_the_other_flag_data()
{
    QTest::addColumn<bool>("box");
    QTest::addColumn<bool>("detect");
    QTest::addColumn<bool>("prompt");
    QTest::addColumn<bool>("prompt_after");
    // The slot overwrites the member when the box changes, and only then.
    QTest::newRow("nothing set") << false << false << false << false;
    QTest::newRow("a prompt that the box does not show") << false << false << true << true;
    QTest::newRow("detection checks the box") << false << true << false << true;
    QTest::newRow("both set") << false << true << true << true;
    QTest::newRow("no detection clears the box") << true << false << true << false;
    QTest::newRow("the box is cleared") << true << false << false << false;
    QTest::newRow("a box already checked") << true << true << false << false;
    QTest::newRow("all set") << true << true << true << true;
}

void ParametersTest::the_prompt_box_follows_the_other_flag()
{
    QFETCH(bool, box);
    QFETCH(bool, detect);
    QFETCH(bool, prompt);
    StationBench bench;
    bench.widget<QCheckBox>("cbPromptToDischarge")->setChecked(box);
    bench.station->detect_full_charge = detect;
    bench.station->prompt_to_discharge = prompt;
    bench.station->populate_ui();
    QCOMPARE(bench.widget<QCheckBox>("cbDetectFullCharge")->isChecked(), detect);
    QCOMPARE(bench.widget<QCheckBox>("cbPromptToDischarge")->isChecked(), detect);
    QTEST(bench.station->prompt_to_discharge, "prompt_after");
    QCOMPARE(bench.station->detect_full_charge, detect);
}

void ParametersTest::a_broken_hour_is_shown_truncated_and_kept()
{
    StationBench bench;
    bench.start();
    bench.type("leMaxChargeTime", "2.5");
    QCOMPARE(bench.station->max_charge_time, 9000);
    bench.station->populate_ui();
    QCOMPARE(bench.widget<QLineEdit>("leMaxChargeTime")->text(), QString("2"));
    QCOMPARE(bench.station->max_charge_time, 9000);
}

KEST_TEST(ParametersTest)
#include "tst_parameters.moc"
