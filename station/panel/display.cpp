#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "common/file.h"
#include "common/number_row.h"
#include "common/time_span.h"
#include "common/unicode.h"
#include "common/widget_colors.h"
#include "common/widget_sizing.h"
#include "config/help_ids.h"
#include "config/settings.h"
#include "config/tool_tips.h"
#include "device/kestrometer.h"

namespace
{
constexpr int LONGEST_STATUS = 4000;  // more than a screen shows: megabytes take seconds to lay out
constexpr int SILENCE = 2;            // seconds without a line before the operator is told
constexpr int RESET_INTERVAL = 5;     // seconds of silence between attempts to reset
constexpr double LEAST_DISCHARGE_CURRENT = 0.1;  // amps

QString parameter(double value)
{
    return QString::number(value, 'g', 6);
}

void warn_of_name(const QString& name, QLabel* blank, QLabel* bad)
{
    blank->setVisible(name.isEmpty());
    bad->setVisible(File::contains_unsafe_filename_characters(name));
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
    station.ui->laKestrometerStatus->setText(
        station.kestrometer->get_status().left(LONGEST_STATUS));

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

/** The finished figures stay until the new cycle has delivered something. */
const TestCycle* shown_cycle(const TestStation& station)
{
    const bool nothing_yet = station.current_cycle != nullptr &&
                             station.current_cycle->amp_hours == 0.0 && station.cycles.size() >= 2;
    return nothing_yet ? station.cycles.at(station.cycles.size() - 2) : station.current_cycle;
}

QString total(const TestCycle* cycle, double TestCycle::*value)
{
    return cycle != nullptr ? fixed_decimal(cycle->*value, 2) : QString("?");
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
    shown_resistances = -1;
    show_readouts();
}

void TestStation::show_readouts()
{
    warn_of_name(serial_number, ui->laBlankSerialNumber, ui->laBadSerialNumber);
    warn_of_name(profile_name, ui->laBlankName, ui->laBadName);
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
    ui->laVoltage->setText(kestrometer != nullptr ? fixed_decimal(kestrometer->voltage, 1) + " V"
                                                  : QString("? V"));
    const QDateTime now = Time::now();
    show_current_or_charge_time(now);
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

void TestStation::show_totals()
{
    const TestCycle* cycle = shown_cycle(*this);
    const QString amp_hours = total(cycle, &TestCycle::amp_hours) + " Ah";
    ui->laCummAmpHours->setText(amp_hours);
    ui->laCummAmpHours2->setText(amp_hours);
    ui->laCummWattHours->setText(total(cycle, &TestCycle::watt_hours) + " Wh");
}

void TestStation::show_current_or_charge_time(const QDateTime& now)
{
    if (kestrometer == nullptr) {
        ui->laCurrent->setText("? A");
        return;
    }
    switch (traits_of(phase).readout) {
    case Readout::Kept:
        break;
    case Readout::Current:
        ui->laCurrent->setText(fixed_decimal(kestrometer->current, 2) + " A");
        ToolTips::assign(ui->laCurrent, HELP_CURRENT);
        break;
    case Readout::ChargeTime:
        ui->laCurrent->setText(format_time_span(leg_start_time.secsTo(now)));
        ToolTips::assign(ui->laCurrent, HELP_CHARGE_TIME);
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
        blink_next_button(*this);
    }
    // A long status text must not widen the panel.
    ui->laKestrometerStatus->setMaximumWidth(ui->laKestrometerStatus->width());
    if (kestrometer != nullptr)
        show_instrument_health(*this);
}
