#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/date_time.h"
#include "common/widget_colors.h"
#include "common/widget_sizing.h"
#include "config/settings.h"
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
    readouts.show_all();
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
