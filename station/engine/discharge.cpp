#include "station/test_station.h"

#include "device/kestrometer.h"

namespace
{
// At or below this a discharge row would show no current; the totals grow all the same.
constexpr double LEAST_SAMPLED_CURRENT = 0.01;
}  // namespace

void TestStation::record_discharge(double time, double elapsed)
{
    const double ir = phase == PHASE_IR_TEST ? check_internal_resistance_test() : 0.0;
    if (phase == PHASE_IR_RECOVERY)
        check_internal_resistance_recovery();
    if (phase == PHASE_IR_TEST || phase == PHASE_IR_RECOVERY)
        freeze_readings();

    const double mean_i = (kestrometer->valid_current + kestrometer->current) * 0.5;
    const double mean_v = (kestrometer->valid_voltage + kestrometer->voltage) * 0.5;
    const double hours = elapsed / 3600.0;
    current_cycle->amp_hours += mean_i * hours;
    current_cycle->watt_hours += mean_v * mean_i * hours;

    if (!(kestrometer->current > LEAST_SAMPLED_CURRENT))
        return;
    current_cycle->add_reading(kestrometer->voltage, kestrometer->current);
    append_data_log(time, current_cycle->amp_hours, kestrometer->voltage, kestrometer->current, ir);
}

void TestStation::check_discharge()
{
    check_internal_resistance_schedule();

    // A check of its own on purpose: a low voltage on the very line that starts a resistance test
    // ends the discharge, and that test never completes.
    if (kestrometer->voltage < low_voltage_cutoff)
        set_phase(phase_after_discharge(), QString("voltage (%1) < low_voltage_cutoff (%2)")
                                               .arg(kestrometer->voltage, 3, 'g')
                                               .arg(low_voltage_cutoff, 0, 'g'));
}
