#include "station/panel/readouts.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "common/file.h"
#include "common/number_row.h"
#include "common/time_span.h"
#include "common/unicode.h"
#include "config/help_ids.h"
#include "config/tool_tips.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

namespace
{
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

void warn_of_name(const QString& name, QLabel* blank, QLabel* bad)
{
    blank->setVisible(name.isEmpty());
    bad->setVisible(File::contains_unsafe_filename_characters(name));
}

/** The finished figures stay until the new cycle has delivered something. */
const TestCycle* shown_cycle(const TestStation& station)
{
    const bool nothing_yet = station.current_cycle != nullptr &&
                             station.current_cycle->amp_hours == 0.0 && station.cycles.size() >= 2;
    return nothing_yet ? station.cycles.at(station.cycles.size() - 2) : station.current_cycle;
}
}  // namespace

Readouts::Readouts(const TestStation& shown_station) : station(shown_station)
{
}

void Readouts::show_all()
{
    shown = Shown();
    show_changes();
}

void Readouts::show_changes()
{
    show_name_warnings();
    enable_start();
    show_identity();
    show_cycle();
    show_internal_resistance();
    show_totals();
    show_phase();
    show_voltage();
    const QDateTime now = Time::now();
    show_current_or_charge_time(now);
    show_elapsed_time(now);
}

void Readouts::forget_current_help()
{
    shown.current_help.reset();
}

void Readouts::show_name_warnings()
{
    if (renew(shown.serial_number, station.serial_number))
        warn_of_name(station.serial_number, station.ui->laBlankSerialNumber,
                     station.ui->laBadSerialNumber);
    if (renew(shown.profile_name, station.profile_name))
        warn_of_name(station.profile_name, station.ui->laBlankName, station.ui->laBadName);
}

void Readouts::enable_start()
{
    if (station.phase == PHASE_IDLE)
        station.ui->pbStartSkip->setEnabled(station.kestrometer != nullptr &&
                                            File::is_safe_filename(station.serial_number) &&
                                            File::is_safe_filename(station.profile_name));
}

void Readouts::show_identity()
{
    const int number =
        station.kestrometer != nullptr ? station.kestrometer->id : station.preview_number;
    if (renew(shown.number, number))
        station.ui->laStationID->setText(Unicode::thin_space + station.get_id());
}

void Readouts::show_cycle()
{
    if (renew(shown.cycle, {station.get_cycle_number(), station.number_of_cycles}))
        station.ui->laCycleNumber->setText(
            QString("Cycle %1/%2").arg(station.get_cycle_number()).arg(station.number_of_cycles));
}

/** Only a new point moves the mean, and in a long test there are thousands to go through. */
void Readouts::show_internal_resistance()
{
    int count = 0;
    for (const TestCycle* cycle : station.cycles)
        count += cycle->internal_resistance.points.size();
    if (renew(shown.resistances, count))
        station.ui->laIntResistance->setText(station.get_avg_internal_resistance_string());
}

void Readouts::show_totals()
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

void Readouts::show_phase()
{
    // Some of the words count the cycle, others depend on the log.
    if (renew(shown.phase,
              {station.phase, station.get_cycle_number(), station.data_log != nullptr}))
        station.ui->laPhase->setText(station.phase_to_string(station.phase));
}

void Readouts::show_voltage()
{
    if (station.kestrometer != nullptr ? renew(shown.voltage, station.kestrometer->voltage, 1)
                                       : renew(shown.voltage, u"?"))
        station.ui->laVoltage->setText(shown.voltage + " V");
}

void Readouts::show_current_or_charge_time(const QDateTime& now)
{
    if (station.kestrometer == nullptr) {
        if (renew(shown.current, u"?"))
            station.ui->laCurrent->setText("? A");
        return;
    }
    switch (traits_of(station.phase).readout) {
    case Readout::Kept:
        break;
    case Readout::Current:
        show_current();
        break;
    case Readout::ChargeTime:
        show_charge_time(now);
        break;
    }
}

void Readouts::show_current()
{
    shown.charge_time.reset();
    if (renew(shown.current, station.kestrometer->current, 2))
        station.ui->laCurrent->setText(shown.current + " A");
    assign_current_help(HELP_CURRENT);
}

void Readouts::show_charge_time(const QDateTime& now)
{
    shown.current.clear();
    const qint64 seconds = station.leg_start_time.secsTo(now);
    if (renew(shown.charge_time, seconds))
        station.ui->laCurrent->setText(format_time_span(seconds));
    assign_current_help(HELP_CHARGE_TIME);
}

/** A text that is missing is told at each request. */
void Readouts::assign_current_help(int id)
{
    if (renew(shown.current_help, id) || !ToolTips::tooltips.contains(id))
        ToolTips::assign(station.ui->laCurrent, id);
}

void Readouts::show_elapsed_time(const QDateTime& now)
{
    const bool logging = station.data_log != nullptr;
    const qint64 seconds = logging ? station.leg_start_time.secsTo(now) : 0;
    if (renew(shown.elapsed_time, {logging, seconds}))
        station.ui->laElapsedTime->setText(logging ? format_time_span(seconds) : QString("0s"));
}
