#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "common/file.h"
#include "common/number_row.h"
#include "common/time_span.h"
#include "common/unicode.h"
#include "common/widget_colors.h"
#include "common/widget_sizing.h"
#include "config/settings.h"
#include "config/tool_tips.h"
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

void show_name_warnings(const TestStation& station)
{
    station.ui->laBlankSerialNumber->setVisible(station.serial_number.isEmpty());
    station.ui->laBlankName->setVisible(station.profile_name.isEmpty());
    station.ui->laBadSerialNumber->setVisible(
        File::contains_unsafe_filename_characters(station.serial_number));
    station.ui->laBadName->setVisible(
        File::contains_unsafe_filename_characters(station.profile_name));
}

void show_voltage(const TestStation& station)
{
    station.ui->laVoltage->setText(station.kestrometer != nullptr
                                       ? number(station.kestrometer->voltage, 1, " V")
                                       : QString("? V"));
}

void blink_next_button(const TestStation& station)
{
    if (station.kestrometer == nullptr && station.data_log == nullptr)
        set_widget_background(station.ui->pbLoadLog, Qt::red);
    else if (station.ui->pbStartSkip->isEnabled())
        set_widget_background(station.ui->pbStartSkip, Qt::red);
}

void show_instrument_health(TestStation& station)
{
    station.ui->laKestrometerStatus->setVisible(Settings::get_show_debug_info());
    station.ui->laKestrometerStatus->setText(station.kestrometer->get_status());

    const qint64 silence = station.kestrometer->last_data_time.secsTo(Time::now());
    station.ui->laLostCommunication->setVisible(silence > SILENCE);
    if (silence > SILENCE && silence % RESET_INTERVAL == 0) {
        station.append_text_log(
            "Attempting to reset the Kestrometer as it may be stuck in bootloader mode.");
        station.kestrometer->reset();
    }
    station.ui->laKestrometerIsStuck->setVisible(station.kestrometer->get_stuck());
    station.ui->laNotDischarging->setVisible(station.phase == PHASE_DISCHARGING &&
                                             station.kestrometer->current <
                                                 LEAST_DISCHARGE_CURRENT);
}

void show_totals(const TestStation& station)
{
    QString amp_hours = "? Ah";
    QString watt_hours = "? Wh";
    if (station.current_cycle != nullptr) {
        // The finished figures stay until the new cycle has delivered something.
        const bool nothing_yet =
            station.current_cycle->amp_hours == 0.0 && station.cycles.size() >= 2;
        const TestCycle* shown =
            nothing_yet ? station.cycles.at(station.cycles.size() - 2) : station.current_cycle;
        amp_hours = number(shown->amp_hours, 2, " Ah");
        watt_hours = number(shown->watt_hours, 2, " Wh");
    }
    station.ui->laCummAmpHours->setText(amp_hours);
    station.ui->laCummAmpHours2->setText(amp_hours);
    station.ui->laCummWattHours->setText(watt_hours);
}

void show_current(const TestStation& station, const QDateTime& now)
{
    if (station.kestrometer == nullptr) {
        station.ui->laCurrent->setText("? A");
        return;
    }
    switch (station.phase) {
    case PHASE_DISCHARGING:
    case PHASE_IR_TEST:
    case PHASE_IR_RECOVERY:
        station.ui->laCurrent->setText(number(station.kestrometer->current, 2, " A"));
        ToolTips::assign(station.ui->laCurrent, 57);
        break;
    case PHASE_CHARGING:
    case PHASE_CHARGING_LEVELED:
    case PHASE_FINAL_CHARGE:
        station.ui->laCurrent->setText(format_time_span(station.leg_start_time.secsTo(now)));
        ToolTips::assign(station.ui->laCurrent, 58);
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
}  // namespace

void TestStation::populate_ui()
{
    ui->leProfileName->setText(profile_name);
    ui->leSerialNumber->setText(serial_number);
    // The grid above the charts is not laid out anew for another number.
    set_fitting_text(&serial_number_label, serial_number);
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
    show_name_warnings(*this);
    if (phase == PHASE_IDLE)
        ui->pbStartSkip->setEnabled(kestrometer != nullptr &&
                                    File::is_safe_filename(serial_number) &&
                                    File::is_safe_filename(profile_name));
    ui->laStationID->setText(Unicode::thin_space + get_id());
    ui->laCycleNumber->setText(
        QString("Cycle %1/%2").arg(get_cycle_number()).arg(number_of_cycles));
    show_internal_resistance();
    show_totals(*this);
    ui->laPhase->setText(phase_to_string(phase));
    show_voltage(*this);
    const QDateTime now = Time::now();
    show_current(*this, now);
    ui->laElapsedTime->setText(data_log != nullptr ? format_time_span(leg_start_time.secsTo(now))
                                                   : QString("0s"));
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
        blink_next_button(*this);
    }
    // A long status text must not widen the panel.
    ui->laKestrometerStatus->setMaximumWidth(ui->laKestrometerStatus->width());
    if (kestrometer != nullptr)
        show_instrument_health(*this);
}
