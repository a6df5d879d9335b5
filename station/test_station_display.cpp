#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "common/file.h"
#include "common/fixed_decimal.h"
#include "common/time_span.h"
#include "common/unicode.h"
#include "common/widget_colors.h"
#include "config/settings.h"
#include "device/kestrometer.h"

namespace
{
constexpr int SILENCE = 2;         // seconds without a line before the operator is told
constexpr int RESET_INTERVAL = 5;  // seconds of silence between attempts to reset
constexpr double LEAST_DISCHARGE_CURRENT = 0.1;  // amps

QString number(double value, int decimals, const char* unit)
{
    return fixed_decimal(value, decimals) + unit;
}

QString parameter(double value)
{
    return QString::number(value, 'g', 6);
}
}  // namespace

void TestStation::populate_ui()
{
    ui->leProfileName->setText(profile_name);
    ui->leSerialNumber->setText(serial_number);
    serial_number_label.setText(serial_number);
    ui->sbNumberOfCycles->setValue(number_of_cycles);
    ui->leMaxChargeTime->setText(QString::number(max_charge_time / 3600));
    ui->leLowVoltageCutoff->setText(parameter(low_voltage_cutoff));
    ui->leFinalCharge->setText(parameter(final_voltage));
    ui->cbDetectFullCharge->setChecked(detect_full_charge);
    // Follows the other flag on purpose; its slot then takes the box's state over.
    ui->cbPromptToDischarge->setChecked(detect_full_charge);
    ui->cbMeasureInternalResistance->setChecked(measure_internal_resistance);
    ui->leInternalResistanceTestIntervalAh->setText(
        parameter(internal_resistance_test_interval_ah));
}

void TestStation::update_ui()
{
    show_name_warnings();
    if (phase == PHASE_IDLE)
        ui->pbStartSkip->setEnabled(kestrometer != nullptr &&
                                    File::is_safe_filename(serial_number) &&
                                    File::is_safe_filename(profile_name));
    ui->laStationID->setText(Unicode::thin_space + get_id());
    ui->laCycleNumber->setText(
        QString("Cycle %1/%2").arg(get_cycle_number()).arg(number_of_cycles));
    show_internal_resistance();
    show_totals();
    ui->laPhase->setText(phase_to_string(phase));
    show_voltage();
    const QDateTime now = Time::now();
    show_current(now);
    ui->laElapsedTime->setText(data_log != nullptr ? format_time_span(leg_start_time.secsTo(now))
                                                   : QString("0s"));
}

void TestStation::show_name_warnings()
{
    ui->laBlankSerialNumber->setVisible(serial_number.isEmpty());
    ui->laBlankName->setVisible(profile_name.isEmpty());
    ui->laBadSerialNumber->setVisible(File::contains_unsafe_filename_characters(serial_number));
    ui->laBadName->setVisible(File::contains_unsafe_filename_characters(profile_name));
}

/** Only a new point moves the mean, and in a long test there are thousands to go through. */
void TestStation::show_internal_resistance()
{
    int count = 0;
    for (const TestCycle* cycle : qAsConst(cycles))
        count += cycle->internal_resistance.points.size();
    if (count == shown_resistances)
        return;
    shown_resistances = count;
    ui->laIntResistance->setText(get_avg_internal_resistance_string());
}

void TestStation::show_totals()
{
    QString amp_hours = "? Ah";
    QString watt_hours = "? Wh";
    if (current_cycle != nullptr) {
        // The finished figures stay until the new cycle has delivered something.
        const bool nothing_yet = current_cycle->amp_hours == 0.0 && cycles.size() >= 2;
        const TestCycle* shown = nothing_yet ? cycles.at(cycles.size() - 2) : current_cycle;
        amp_hours = number(shown->amp_hours, 2, " Ah");
        watt_hours = number(shown->watt_hours, 2, " Wh");
    }
    ui->laCummAmpHours->setText(amp_hours);
    ui->laCummAmpHours2->setText(amp_hours);
    ui->laCummWattHours->setText(watt_hours);
}

void TestStation::show_voltage()
{
    ui->laVoltage->setText(kestrometer != nullptr ? number(kestrometer->voltage, 1, " V")
                                                  : QString("? V"));
}

void TestStation::show_current(const QDateTime& now)
{
    if (kestrometer == nullptr) {
        ui->laCurrent->setText("? A");
        return;
    }
    switch (phase) {
    case PHASE_DISCHARGING:
    case PHASE_IR_TEST:
    case PHASE_IR_RECOVERY:
        ui->laCurrent->setText(number(kestrometer->current, 2, " A"));
        break;
    case PHASE_CHARGING:
    case PHASE_CHARGING_LEVELED:
    case PHASE_FINAL_CHARGE:
        ui->laCurrent->setText(format_time_span(leg_start_time.secsTo(now)));
        break;
    case PHASE_IDLE:
    case PHASE_FULL_CHARGE_TEST:
    case PHASE_READY_FOR_DISCHARGE:
    case PHASE_FINAL_CHARGE_TEST:
    case PHASE_DONE:
        // What stood there last stays.
        break;
    }
}

void TestStation::show_start_skip(StartSkip button)
{
    switch (button) {
    case StartSkip::Start:
        ui->pbStartSkip->setText("Start");
        ui->pbStartSkip->setEnabled(kestrometer != nullptr && data_log != nullptr);
        break;
    case StartSkip::Skip:
        ui->pbStartSkip->setText("Skip");
        ui->pbStartSkip->setEnabled(kestrometer != nullptr);
        break;
    case StartSkip::Disabled:
        ui->pbStartSkip->setEnabled(false);
        break;
    }
}

void TestStation::slot_blink(bool on)
{
    if (on) {
        const QColor plain = palette().color(QPalette::Current, backgroundRole());
        set_widget_background(ui->pbStartSkip, plain);
        set_widget_background(ui->pbLoadLog, plain);
    } else if (phase == PHASE_IDLE || phase == PHASE_READY_FOR_DISCHARGE) {
        blink_next_button();
    }
    // A long status text must not widen the panel.
    ui->laKestrometerStatus->setMaximumWidth(ui->laKestrometerStatus->width());
    if (kestrometer != nullptr)
        show_instrument_health();
}

void TestStation::blink_next_button()
{
    if (kestrometer == nullptr && data_log == nullptr)
        set_widget_background(ui->pbLoadLog, Qt::red);
    else if (ui->pbStartSkip->isEnabled())
        set_widget_background(ui->pbStartSkip, Qt::red);
}

void TestStation::show_instrument_health()
{
    ui->laKestrometerStatus->setVisible(Settings::get_show_debug_info());
    ui->laKestrometerStatus->setText(kestrometer->get_status());

    const qint64 silence = kestrometer->last_data_time.secsTo(Time::now());
    ui->laLostCommunication->setVisible(silence > SILENCE);
    if (silence > SILENCE && silence % RESET_INTERVAL == 0) {
        append_text_log(
            "Attempting to reset the Kestrometer as it may be stuck in bootloader mode.");
        kestrometer->reset();
    }
    ui->laKestrometerIsStuck->setVisible(kestrometer->get_stuck());
    ui->laNotDischarging->setVisible(phase == PHASE_DISCHARGING &&
                                     kestrometer->current < LEAST_DISCHARGE_CURRENT);
}
