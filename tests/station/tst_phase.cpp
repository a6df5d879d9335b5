#include "station/phase.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include <QSet>
#include <QtTest>

#include <memory>

/** Holds the table of phases against the sets that the engine speaks of. */
class PhaseTest : public QObject
{
    Q_OBJECT

private slots:
    void phases_keep_their_numbers();
    void every_phase_is_in_one_set_of_each_kind_data();
    void every_phase_is_in_one_set_of_each_kind();
    void a_failed_comparison_names_the_values_data();
    void a_failed_comparison_names_the_values();
};

void PhaseTest::phases_keep_their_numbers()
{
    const QList<Phase> in_order = {PHASE_IDLE,
                                   PHASE_CHARGING,
                                   PHASE_CHARGING_LEVELED,
                                   PHASE_FULL_CHARGE_TEST,
                                   PHASE_READY_FOR_DISCHARGE,
                                   PHASE_DISCHARGING,
                                   PHASE_IR_TEST,
                                   PHASE_IR_RECOVERY,
                                   PHASE_FINAL_CHARGE,
                                   PHASE_FINAL_CHARGE_TEST,
                                   PHASE_DONE};
    for (int number = 0; number < in_order.size(); ++number)
        QCOMPARE(int(in_order.at(number)), number);
}

void PhaseTest::every_phase_is_in_one_set_of_each_kind_data()
{
    add_all_phases();
}

void PhaseTest::every_phase_is_in_one_set_of_each_kind()
{
    const QSet<int> charge_samples = {PHASE_CHARGING, PHASE_CHARGING_LEVELED,
                                      PHASE_FULL_CHARGE_TEST, PHASE_FINAL_CHARGE,
                                      PHASE_FINAL_CHARGE_TEST};
    const QSet<int> discharge_samples = {PHASE_DISCHARGING, PHASE_IR_TEST, PHASE_IR_RECOVERY};
    const QSet<int> reads_skip = {PHASE_CHARGING, PHASE_CHARGING_LEVELED, PHASE_DISCHARGING,
                                  PHASE_FINAL_CHARGE};
    const QSet<int> button_disabled = {PHASE_FULL_CHARGE_TEST, PHASE_IR_TEST, PHASE_IR_RECOVERY,
                                       PHASE_FINAL_CHARGE_TEST};
    const QSet<int> reads_start = {PHASE_IDLE, PHASE_READY_FOR_DISCHARGE, PHASE_DONE};
    const QSet<int> told_off = {PHASE_IDLE, PHASE_FULL_CHARGE_TEST, PHASE_READY_FOR_DISCHARGE,
                                PHASE_IR_TEST, PHASE_DONE};
    const QSet<int> told_charging = {PHASE_CHARGING, PHASE_CHARGING_LEVELED, PHASE_FINAL_CHARGE};
    const QSet<int> told_discharging = {PHASE_DISCHARGING, PHASE_IR_RECOVERY};
    const QSet<int> told_nothing = {PHASE_FINAL_CHARGE_TEST};
    const QSet<int> shows_current = {PHASE_DISCHARGING, PHASE_IR_TEST, PHASE_IR_RECOVERY};
    const QSet<int> shows_charge_time = {PHASE_CHARGING, PHASE_CHARGING_LEVELED,
                                         PHASE_FINAL_CHARGE};

    QFETCH(int, phase);
    const PhaseTraits& traits = traits_of(Phase(phase));
    QCOMPARE(int(traits.phase), phase);
    QCOMPARE(traits.sample == Sample::Charge, charge_samples.contains(phase));
    QCOMPARE(traits.sample == Sample::Discharge, discharge_samples.contains(phase));
    QCOMPARE(traits.button == StartSkip::Skip, reads_skip.contains(phase));
    QCOMPARE(traits.button == StartSkip::Disabled, button_disabled.contains(phase));
    QCOMPARE(traits.button == StartSkip::Start, reads_start.contains(phase));
    QCOMPARE(traits.command == Off, told_off.contains(phase));
    QCOMPARE(traits.command == Charging, told_charging.contains(phase));
    QCOMPARE(traits.command == Discharging, told_discharging.contains(phase));
    QCOMPARE(traits.command == no_command, told_nothing.contains(phase));
    QCOMPARE(traits.readout == Readout::Current, shows_current.contains(phase));
    QCOMPARE(traits.readout == Readout::ChargeTime, shows_charge_time.contains(phase));
    QCOMPARE(traits.press == Press::Refused, button_disabled.contains(phase));
}

void PhaseTest::a_failed_comparison_names_the_values_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("expected");
    const auto row = [](auto value, const char* name) {
        const std::unique_ptr<char[]> in_comparison(toString(value));
        QTest::newRow(name) << QByteArray(in_comparison.get()) << QByteArray(name);
    };
    row(PHASE_IDLE, "PHASE_IDLE");
    row(PHASE_READY_FOR_DISCHARGE, "PHASE_READY_FOR_DISCHARGE");
    row(PHASE_FINAL_CHARGE_TEST, "PHASE_FINAL_CHARGE_TEST");
    row(PHASE_DONE, "PHASE_DONE");
    row(Phase(11), "Phase(11)");
    row(Off, "Off");
    row(Discharging, "Discharging");
    row(Unknown, "Unknown");
}

void PhaseTest::a_failed_comparison_names_the_values()
{
    QFETCH(QByteArray, name);
    QTEST(name, "expected");
}

KEST_GUILESS_TEST(PhaseTest)
#include "tst_phase.moc"
