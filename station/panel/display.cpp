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
constexpr int LONGEST_STATUS = 4000;  // more than a screen shows: megabytes take seconds to lay out
constexpr int SILENCE = 2;            // seconds without a line before the operator is told
constexpr int RESET_INTERVAL = 5;     // seconds of silence between attempts to reset
constexpr double LEAST_DISCHARGE_CURRENT = 0.1;  // amps

/** Keeps what is to be shown; false if that is shown already. */
template <typename Value> bool renew(std::optional<Value>& shown, const Value& value)
{
    if (shown == value)
        return false;
    shown = value;
    return true;
}

bool renew(QString& shown, QStringView text)
{
    if (!shown.isNull() && shown == text)
        return false;
    shown = text.toString();
    return true;
}

bool renew(QString& shown, double value, int decimals)
{
    NumberRow number;
    number.prepend_fixed(value, decimals);
    return renew(shown, number.view());
}

QString parameter(double value)
{
    return QString::number(value, 'g', 6);
}

void show_name_warnings(const TestStation& station, ShownReadouts& shown)
{
    const auto show = [](const QString& name, QLabel* blank, QLabel* bad) {
        blank->setVisible(name.isEmpty());
        bad->setVisible(File::contains_unsafe_filename_characters(name));
    };
    if (renew(shown.serial_number, station.serial_number))
        show(station.serial_number, station.ui->laBlankSerialNumber, station.ui->laBadSerialNumber);
    if (renew(shown.profile_name, station.profile_name))
        show(station.profile_name, station.ui->laBlankName, station.ui->laBadName);
}

void enable_start(const TestStation& station)
{
    if (station.phase == PHASE_IDLE)
        station.ui->pbStartSkip->setEnabled(station.kestrometer != nullptr &&
                                            File::is_safe_filename(station.serial_number) &&
                                            File::is_safe_filename(station.profile_name));
}

void show_identity(const TestStation& station, ShownReadouts& shown)
{
    const int number =
        station.kestrometer != nullptr ? station.kestrometer->id : station.preview_number;
    if (renew(shown.number, number))
        station.ui->laStationID->setText(Unicode::thin_space + station.get_id());
}

void show_cycle(const TestStation& station, ShownReadouts& shown)
{
    if (renew(shown.cycle, {station.get_cycle_number(), station.number_of_cycles}))
        station.ui->laCycleNumber->setText(
            QString("Cycle %1/%2").arg(station.get_cycle_number()).arg(station.number_of_cycles));
}

/** Only a new point moves the mean, and in a long test there are thousands to go through. */
void show_internal_resistance(const TestStation& station, ShownReadouts& shown)
{
    int count = 0;
    for (const TestCycle* cycle : station.cycles)
        count += cycle->internal_resistance.points.size();
    if (renew(shown.resistances, count))
        station.ui->laIntResistance->setText(station.get_avg_internal_resistance_string());
}

void show_phase(const TestStation& station, ShownReadouts& shown)
{
    // Some of the words count the cycle, others depend on the log.
    if (renew(shown.phase,
              {station.phase, station.get_cycle_number(), station.data_log != nullptr}))
        station.ui->laPhase->setText(station.phase_to_string(station.phase));
}

void show_voltage(const TestStation& station, ShownReadouts& shown)
{
    const bool changed = station.kestrometer != nullptr
                             ? renew(shown.voltage, station.kestrometer->voltage, 1)
                             : renew(shown.voltage, u"?");
    if (changed)
        station.ui->laVoltage->setText(shown.voltage + " V");
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

void show_totals(const TestStation& station, ShownReadouts& shown)
{
    const TestCycle* cycle = shown_cycle(station);
    if (cycle != nullptr ? renew(shown.amp_hours, cycle->amp_hours, 2)
                         : renew(shown.amp_hours, u"?")) {
        const QString text = shown.amp_hours + " Ah";
        station.ui->laCummAmpHours->setText(text);
        station.ui->laCummAmpHours2->setText(text);
    }
    if (cycle != nullptr ? renew(shown.watt_hours, cycle->watt_hours, 2)
                         : renew(shown.watt_hours, u"?"))
        station.ui->laCummWattHours->setText(shown.watt_hours + " Wh");
}

/** A text that is missing is told at each request. */
void assign_current_help(const TestStation& station, ShownReadouts& shown, int id)
{
    if (renew(shown.current_help, id) || !ToolTips::tooltips.contains(id))
        ToolTips::assign(station.ui->laCurrent, id);
}

void show_current(const TestStation& station, ShownReadouts& shown)
{
    shown.charge_time.reset();
    if (renew(shown.current, station.kestrometer->current, 2))
        station.ui->laCurrent->setText(shown.current + " A");
    assign_current_help(station, shown, 57);
}

void show_charge_time(const TestStation& station, ShownReadouts& shown, const QDateTime& now)
{
    shown.current.clear();
    const qint64 seconds = station.leg_start_time.secsTo(now);
    if (renew(shown.charge_time, seconds))
        station.ui->laCurrent->setText(format_time_span(seconds));
    assign_current_help(station, shown, 58);
}

void show_current_or_charge_time(const TestStation& station, ShownReadouts& shown,
                                 const QDateTime& now)
{
    if (station.kestrometer == nullptr) {
        if (renew(shown.current, u"?"))
            station.ui->laCurrent->setText("? A");
        return;
    }
    switch (station.phase) {
    case PHASE_DISCHARGING:
    case PHASE_IR_TEST:
    case PHASE_IR_RECOVERY:
        show_current(station, shown);
        break;
    case PHASE_CHARGING:
    case PHASE_CHARGING_LEVELED:
    case PHASE_FINAL_CHARGE:
        show_charge_time(station, shown, now);
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

void show_elapsed_time(const TestStation& station, ShownReadouts& shown, const QDateTime& now)
{
    const bool logging = station.data_log != nullptr;
    const qint64 seconds = logging ? station.leg_start_time.secsTo(now) : 0;
    if (renew(shown.elapsed_time, {logging, seconds}))
        station.ui->laElapsedTime->setText(logging ? format_time_span(seconds) : QString("0s"));
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
    shown = ShownReadouts();
    show_changes();
}

void TestStation::show_changes()
{
    show_name_warnings(*this, shown);
    enable_start(*this);
    show_identity(*this, shown);
    show_cycle(*this, shown);
    show_internal_resistance(*this, shown);
    show_totals(*this, shown);
    show_phase(*this, shown);
    show_voltage(*this, shown);
    const QDateTime now = Time::now();
    show_current_or_charge_time(*this, shown, now);
    show_elapsed_time(*this, shown, now);
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
