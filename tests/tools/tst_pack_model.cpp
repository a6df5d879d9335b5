#include "simulator/pack_model.h"
#include "support/test_program.h"

#include <QtTest>

#include <cmath>

class PackModelTest : public QObject
{
    Q_OBJECT

private slots:
    void the_voltage_at_rest_follows_the_curve_data();
    void the_voltage_at_rest_follows_the_curve();
    void the_curve_rises_all_the_way();
    void at_rest_nothing_changes();
    void the_load_takes_its_current_and_sags_the_voltage();
    void a_discharge_takes_amps_times_hours();
    void long_steps_give_what_short_ones_give();
    void the_charger_holds_its_current_first();
    void the_charger_holds_its_voltage_then_and_tapers();
    void a_pack_above_the_chargers_voltage_takes_nothing();
    void a_pack_without_resistance_charges_and_discharges();
    void an_empty_pack_opens_its_protection();
    void a_sagging_cell_opens_the_protection();
    void a_charger_closes_the_protection();
    void without_a_load_the_pack_stays_at_rest();
    void the_voltage_never_falls_below_nothing();
    void the_default_pack_does_two_cycles_in_less_than_four_hours();
};

namespace
{
PackModel pack_at(double state_of_charge)
{
    PackModel pack;
    pack.state_of_charge = state_of_charge;
    return pack;
}

/** Seconds until `done`, a second at a time; at most ten hours. */
template <typename Condition>
int seconds_until(PackModel& pack, InstrumentState state, Condition done)
{
    int seconds = 0;
    while (seconds < 36000 && !done(pack.advance(1.0, state)))
        ++seconds;
    return seconds;
}
}  // namespace

void PackModelTest::the_voltage_at_rest_follows_the_curve_data()
{
    QTest::addColumn<double>("state_of_charge");
    QTest::addColumn<double>("volts");
    QTest::newRow("below empty") << -0.1 << 3.00;
    QTest::newRow("empty") << 0.0 << 3.00;
    QTest::newRow("between two points") << 0.01 << 3.10;
    QTest::newRow("on a point") << 0.05 << 3.35;
    QTest::newRow("half") << 0.5 << 3.72;
    QTest::newRow("a quarter of the way") << 0.525 << 3.7425;
    QTest::newRow("nearly full") << 0.975 << 4.165;
    QTest::newRow("full") << 1.0 << 4.20;
    QTest::newRow("above full") << 1.1 << 4.20;
}

void PackModelTest::the_voltage_at_rest_follows_the_curve()
{
    QFETCH(double, state_of_charge);
    QFETCH(double, volts);
    QCOMPARE(cell_open_circuit_voltage(state_of_charge), volts);
    PackModel pack = pack_at(state_of_charge);
    pack.cells = 10;
    QCOMPARE(pack.open_circuit_voltage(), 10 * volts);
}

void PackModelTest::the_curve_rises_all_the_way()
{
    for (int i = 1; i <= 1000; ++i)
        QVERIFY2(cell_open_circuit_voltage(i / 1000.0) >
                     cell_open_circuit_voltage((i - 1) / 1000.0),
                 qPrintable(QString("at %1 thousandths").arg(i)));
}

void PackModelTest::at_rest_nothing_changes()
{
    PackModel pack = pack_at(0.5);
    const PackReading reading = pack.advance(86400.0, InstrumentState::Off);
    QCOMPARE(reading.volts, 22.32);
    QCOMPARE(reading.amps, 0.0);
    QCOMPARE(pack.state_of_charge, 0.5);
}

void PackModelTest::the_load_takes_its_current_and_sags_the_voltage()
{
    PackModel pack = pack_at(0.5);
    pack.load_amps = 2.0;
    pack.internal_resistance = 0.1;
    const PackReading reading = pack.reading(InstrumentState::Discharging);
    QCOMPARE(reading.volts, 22.32 - 0.2);
    QCOMPARE(reading.amps, 2.0);
}

void PackModelTest::a_discharge_takes_amps_times_hours()
{
    PackModel pack = pack_at(1.0);
    pack.capacity_ah = 10.0;
    pack.load_amps = 4.0;
    pack.advance(3600.0, InstrumentState::Discharging);
    QVERIFY2(std::abs(pack.state_of_charge - 0.6) < 1e-9,
             qPrintable(QString::number(pack.state_of_charge)));
}

void PackModelTest::long_steps_give_what_short_ones_give()
{
    PackModel one = pack_at(0.2);
    PackModel other = one;
    for (int i = 0; i < 3600; ++i)
        one.advance(1.0, InstrumentState::Charging);
    other.advance(3600.0, InstrumentState::Charging);
    QCOMPARE(one.state_of_charge, other.state_of_charge);
}

void PackModelTest::the_charger_holds_its_current_first()
{
    PackModel pack = pack_at(0.2);
    for (int i = 0; i < 20; ++i) {
        const PackReading reading = pack.advance(60.0, InstrumentState::Charging);
        QCOMPARE(reading.amps, 4.0);
        QCOMPARE(reading.volts, pack.open_circuit_voltage() + 4.0 * 0.15);
    }
}

void PackModelTest::the_charger_holds_its_voltage_then_and_tapers()
{
    PackModel pack = pack_at(0.2);
    const int constant_current = seconds_until(pack, InstrumentState::Charging,
                                               [](const PackReading& r) { return r.amps < 4.0; });
    QVERIFY2(constant_current < 3600, qPrintable(QString::number(constant_current)));
    double amps = 4.0;
    for (int i = 0; i < 60; ++i) {
        const PackReading reading = pack.advance(60.0, InstrumentState::Charging);
        QCOMPARE(reading.volts, 25.2);
        QVERIFY(reading.amps < amps || reading.amps < 1e-6);
        amps = reading.amps;
    }
    QVERIFY(amps < 0.01);
    QVERIFY(pack.state_of_charge > 0.999 && pack.state_of_charge <= 1.0);
}

void PackModelTest::a_pack_above_the_chargers_voltage_takes_nothing()
{
    PackModel pack = pack_at(0.9);
    pack.charger_volts_per_cell = 4.0;
    const PackReading reading = pack.advance(600.0, InstrumentState::Charging);
    QCOMPARE(reading.amps, 0.0);
    QCOMPARE(reading.volts, 6 * 4.09);
    QCOMPARE(pack.state_of_charge, 0.9);
}

void PackModelTest::a_pack_without_resistance_charges_and_discharges()
{
    PackModel pack = pack_at(0.5);
    pack.internal_resistance = 0.0;
    QCOMPARE(pack.reading(InstrumentState::Discharging).volts, 22.32);
    QCOMPARE(pack.reading(InstrumentState::Charging).amps, 4.0);
    pack.advance(36000.0, InstrumentState::Charging);
    QCOMPARE(pack.state_of_charge, 1.0);
    QCOMPARE(pack.reading(InstrumentState::Charging).amps, 0.0);
}

void PackModelTest::an_empty_pack_opens_its_protection()
{
    PackModel pack = pack_at(0.1);
    pack.protection_volts_per_cell = 0.0;
    const PackReading reading = pack.advance(36000.0, InstrumentState::Discharging);
    QVERIFY(pack.protection_open);
    QCOMPARE(pack.state_of_charge, 0.0);
    QCOMPARE(reading.volts, 0.0);
    QCOMPARE(reading.amps, 0.0);
    QCOMPARE(pack.reading(InstrumentState::Off).volts, 0.0);
}

void PackModelTest::a_sagging_cell_opens_the_protection()
{
    PackModel pack = pack_at(0.5);
    pack.load_amps = 50.0;
    pack.advance(1.0, InstrumentState::Discharging);
    QVERIFY(pack.protection_open);
    QVERIFY(pack.state_of_charge > 0.49);
}

void PackModelTest::a_charger_closes_the_protection()
{
    PackModel pack = pack_at(0.5);
    pack.protection_open = true;
    pack.advance(1.0, InstrumentState::Charging);
    QVERIFY(!pack.protection_open);
    QCOMPARE(pack.reading(InstrumentState::Discharging).amps, 5.0);
}

void PackModelTest::without_a_load_the_pack_stays_at_rest()
{
    PackModel pack = pack_at(0.5);
    pack.load_connected = false;
    const PackReading reading = pack.advance(3600.0, InstrumentState::Discharging);
    QCOMPARE(reading.volts, 22.32);
    QCOMPARE(reading.amps, 0.0);
    QCOMPARE(pack.state_of_charge, 0.5);
}

void PackModelTest::the_voltage_never_falls_below_nothing()
{
    PackModel pack = pack_at(0.5);
    pack.load_amps = 1000.0;
    QCOMPARE(pack.reading(InstrumentState::Discharging).volts, 0.0);
}

void PackModelTest::the_default_pack_does_two_cycles_in_less_than_four_hours()
{
    PackModel pack;
    int seconds = 0;
    for (int cycle = 0; cycle < 2; ++cycle) {
        seconds += seconds_until(pack, InstrumentState::Charging,
                                 [](const PackReading& reading) { return reading.amps < 0.05; });
        seconds += seconds_until(pack, InstrumentState::Discharging,
                                 [](const PackReading& reading) { return reading.volts < 19.0; });
        QVERIFY(!pack.protection_open);
    }
    QVERIFY2(seconds > 3600 && seconds < 4 * 3600, qPrintable(QString::number(seconds)));
}

KEST_GUILESS_TEST(PackModelTest)

#include "tst_pack_model.moc"
