#include "station/test_station.h"

#include "common/date_time.h"
#include "device/kestrometer.h"

namespace
{
constexpr int LEVEL_WINDOW = 600;       // samples; ten minutes at a line a second
constexpr double LEVEL_BAND = 0.1;      // volts
constexpr double NOT_FULL_RISE = 0.1;   // volts
constexpr int SAMPLES_PER_MINUTE = 60;  // at a line a second

QString volts(double value)
{
    return QString::number(value, 'f', 3);
}

bool first_discharge_done(const TestStation& station)
{
    return station.cycles.indexOf(station.current_cycle) == 0;
}

bool charge_test_due(const TestStation& station)
{
    return station.next_charge_test_timeout < Time::now();
}

/** `cause` begins the reason; the rest tells why the next phase follows. */
void end_charge(TestStation& station, const QString& cause)
{
    if (first_discharge_done(station))
        station.set_phase(PHASE_DISCHARGING, cause + ", first cycle");
    else if (station.prompt_to_discharge)
        station.set_phase(PHASE_READY_FOR_DISCHARGE, cause + ", prompt_to_discharge = true");
    else
        station.set_phase(PHASE_DISCHARGING, cause + ", prompt_to_discharge = false");
}
}  // namespace

bool TestStation::max_charge_time_exceeded() const
{
    return leg_start_time.addSecs(max_charge_time) < Time::now();
}

bool TestStation::voltage_has_leveled_off() const
{
    const QList<QPointF>& points = charge_voltage_series.points;
    if (points.size() < LEVEL_WINDOW)
        return false;
    const double delta = points.last().y() - points.at(points.size() - LEVEL_WINDOW).y();
    return delta >= 0.0 && delta <= LEVEL_BAND;
}

bool TestStation::delta_voltage(int minutes, double& delta) const
{
    const QList<QPointF>& points = charge_voltage_series.points;
    const qint64 window = qint64(minutes) * SAMPLES_PER_MINUTE;
    if (window < 1 || points.size() < window)
        return false;
    delta = points.last().y() - points.at(points.size() - int(window)).y();
    return true;
}

void TestStation::check_charge()
{
    if (max_charge_time_exceeded())
        end_charge(*this, "max charge time reached");

    // A check of its own on purpose: it overrides a prompt; a discharge has emptied the series.
    if (detect_full_charge && voltage_has_leveled_off())
        set_phase(PHASE_CHARGING_LEVELED, "voltage has leveled off");
}

void TestStation::check_leveled_charge()
{
    if (max_charge_time_exceeded())
        end_charge(*this, "max charge time reached");

    // A check of its own on purpose: a charge test that is also due comes right behind a prompt or
    // the discharge that has just begun.
    if (detect_full_charge && charge_test_due(*this)) {
        charge_test_voltage = kestrometer->voltage;
        set_phase(PHASE_FULL_CHARGE_TEST, "next_charge_test_timeout reached");
    }
}

void TestStation::check_full_charge_test()
{
    if (kestrometer->state != Off)
        return;
    // Signed on purpose: a voltage that falls when the charger leaves counts as full.
    const double delta = kestrometer->voltage - charge_test_voltage;
    if (!(delta < NOT_FULL_RISE))
        set_phase(PHASE_CHARGING_LEVELED, "charging voltage drop >= 0.1v");
    else
        end_charge(*this, "charging voltage drop < 0.1v");
}

void TestStation::check_final_charge()
{
    if (max_charge_time_exceeded())
        set_phase(PHASE_DONE, "max charge time reached");

    // A check of its own on purpose: a charge test that is also due overrides PHASE_DONE.
    if (charge_test_due(*this))
        set_phase(PHASE_FINAL_CHARGE_TEST, "next_charge_test_timeout reached");
}

void TestStation::check_final_charge_test()
{
    if (kestrometer->voltage > final_voltage)
        set_phase(PHASE_DONE, QString("voltage (%1) >= final_voltage (%2)")
                                  .arg(volts(kestrometer->voltage), volts(final_voltage)));
    else
        set_phase(PHASE_FINAL_CHARGE, QString("voltage (%1) < final_voltage (%2)")
                                          .arg(volts(kestrometer->voltage), volts(final_voltage)));
}
