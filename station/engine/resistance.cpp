#include "station/test_station.h"

#include "device/kestrometer.h"

namespace
{
// Amps below which the load counts as gone.
constexpr double NO_CURRENT = 0.01;

bool internal_resistance_test_due(const TestStation& station)
{
    return station.measure_internal_resistance &&
           !(station.current_cycle->amp_hours < station.next_ir_check_ah);
}

void begin_internal_resistance_test(TestStation& station)
{
    station.ir_test_voltage = station.kestrometer->voltage;
    station.ir_test_current = station.kestrometer->current;
    station.set_phase(PHASE_IR_TEST,
                      QString("amp_hours (%1) >= next_ir_check_ah (%2)")
                          .arg(QString::number(station.current_cycle->amp_hours, 'f', 3))
                          .arg(station.next_ir_check_ah, 3, 'g'));
}
}  // namespace

void TestStation::check_internal_resistance_schedule()
{
    if (internal_resistance_test_due(*this))
        begin_internal_resistance_test(*this);
}

double TestStation::check_internal_resistance_test()
{
    if (kestrometer->state != Off || !(kestrometer->current < NO_CURRENT))
        return 0.0;
    const double ir = (kestrometer->voltage - ir_test_voltage) / ir_test_current;
    if (ir < 0) {
        // The schedule stands on purpose: the test is repeated as soon as the recovery ends.
        append_text_log(QString("botched IR test, open circuit voltage = %1 V, closed circuit "
                                "voltage = %2 V, I = %3 A, ir = %4 mOhm")
                            .arg(kestrometer->voltage)
                            .arg(ir_test_voltage)
                            .arg(ir_test_current)
                            .arg(ir * 1000));
    } else {
        next_ir_check_ah += internal_resistance_test_interval_ah;
        current_cycle->internal_resistance.add(current_cycle->amp_hours, ir * 1000.0);
    }
    set_phase(PHASE_IR_RECOVERY, "Completed IR Test, IR = " + QString::number(ir * 1000, 'f', 3));
    return ir;
}

void TestStation::check_internal_resistance_recovery()
{
    if (kestrometer->state == Discharging && !(ir_test_voltage < kestrometer->voltage))
        set_phase(PHASE_DISCHARGING, "Finished recovering from IR test");
}

void TestStation::freeze_readings()
{
    kestrometer->voltage = kestrometer->valid_voltage = ir_test_voltage;
    kestrometer->current = kestrometer->valid_current = ir_test_current;
}
