#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "device/kestrometer.h"
#include "station/cycle_charts.h"

namespace
{
void arm_charge_test_timer(TestStation& station)
{
    station.next_charge_test_timeout = Time::now().addSecs(station.charge_test_interval);
}

void record_charge(TestStation& station, double time)
{
    station.charge_voltage_series.add(time, station.kestrometer->voltage);
    station.append_data_log(time, station.kestrometer->voltage);
}

void rename_curves(TestStation& station)
{
    const QString name = QString::number(station.kestrometer->id);
    for (TestCycle* cycle : station.cycles) {
        cycle->voltage_vs_amphours.name = name;
        cycle->current_vs_amphours.name = name;
    }
    emit station.sig_id_change();
    emit station.sig_repaint_chart_request();
}
}  // namespace

void TestStation::set_phase(Phase new_phase, const QString& reason)
{
    append_text_log(
        QString("Switching to phase %1 because %2").arg(phase_to_string(new_phase), reason));
    enter_phase(new_phase);
    phase = new_phase;
    const PhaseTraits& traits = traits_of(phase);
    show_start_skip(traits.button);
    if (kestrometer != nullptr && traits.command != no_command)
        kestrometer->set_state(traits.command);
    update_ui();
}

void TestStation::enter_phase(Phase new_phase)
{
    switch (new_phase) {
    case PHASE_CHARGING:
        begin_charge_leg();
        break;
    case PHASE_CHARGING_LEVELED:
        arm_charge_test_timer(*this);
        break;
    case PHASE_DISCHARGING:
        // Back from a resistance test the discharge goes on in the same cycle.
        if (phase != PHASE_IR_RECOVERY)
            begin_discharge();
        break;
    case PHASE_FINAL_CHARGE:
        // Interrupted by a final charge test alone, the charge stays one leg with one header.
        if (phase != PHASE_FINAL_CHARGE_TEST)
            begin_charge_leg();
        arm_charge_test_timer(*this);
        break;
    case PHASE_IDLE:
    case PHASE_FULL_CHARGE_TEST:
    case PHASE_READY_FOR_DISCHARGE:
    case PHASE_IR_TEST:
    case PHASE_IR_RECOVERY:
    case PHASE_FINAL_CHARGE_TEST:
    case PHASE_DONE:
        break;
    }
}

void TestStation::begin_charge_leg()
{
    charge_voltage_series.points.clear();
    leg_start_time = Time::now();
    write_charge_cycle_header();
}

void TestStation::begin_discharge()
{
    begin_cycle();
    leg_start_time = Time::now();
    current_cycle->start_time = leg_start_time;
    write_discharge_cycle_header();
    next_ir_check_ah = internal_resistance_test_interval_ah;
    emit sig_max_cycle_change();
}

void TestStation::begin_cycle()
{
    charge_voltage_series.points.clear();
    current_cycle = new TestCycle;
    cycles.append(current_cycle);
    ui->laCycleNumber->setText(
        QString("Cycle %1/%2").arg(get_cycle_number()).arg(number_of_cycles));

    set_curve_color(*current_cycle, color);
    set_curve_axes(*current_cycle);
    emit sig_max_cycle_change();
}

void TestStation::slot_measurement()
{
    if (data_log != nullptr) {
        record_measurement();
        check_transitions();
    }
    readouts.show_changes();
}

void TestStation::record_measurement()
{
    const QDateTime& arrival = kestrometer->last_data_time;
    const double elapsed = double(kestrometer->previous_data_time.msecsTo(arrival)) / 1000.0;
    const double time = double(leg_start_time.msecsTo(arrival)) / 1000.0;
    switch (traits_of(phase).sample) {
    case Sample::Charge:
        record_charge(*this, time);
        break;
    case Sample::Discharge:
        record_discharge(time, elapsed);
        break;
    case Sample::None:
        break;
    }
}

void TestStation::check_transitions()
{
    switch (phase) {
    case PHASE_CHARGING:
        check_charge();
        break;
    case PHASE_CHARGING_LEVELED:
        check_leveled_charge();
        break;
    case PHASE_FULL_CHARGE_TEST:
        check_full_charge_test();
        break;
    case PHASE_DISCHARGING:
        check_discharge();
        break;
    case PHASE_FINAL_CHARGE:
        check_final_charge();
        break;
    case PHASE_FINAL_CHARGE_TEST:
        check_final_charge_test();
        break;
    case PHASE_IR_TEST:
    case PHASE_IR_RECOVERY:
        // Both look at the live readings, before the sample is taken.
        break;
    case PHASE_IDLE:
    case PHASE_READY_FOR_DISCHARGE:
    case PHASE_DONE:
        // Only the operator leaves these.
        break;
    }
}

void TestStation::slot_id_change()
{
    if (data_log != nullptr)
        rename_curves(*this);
    repopulate_color_combobox();
}
