#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/message_boxes.h"
#include "config/battery_profiles.h"

#include <QMessageBox>

namespace
{
bool confirmed(const QString& title, const QString& text)
{
    return QMessageBox::question(nullptr, title, text, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

bool start_warnings_accepted(const TestStation& station)
{
    if (!station.serial_number_edited &&
        !confirmed("Confirm", "Warning: Serial number has not been edited. Continue anyway?"))
        return false;
    if (station.low_voltage_cutoff < 1.0 &&
        !confirmed("Warning", "Low-voltage cutoff is < 1v. Continue anyway?"))
        return false;
    return station.max_charge_time > 59 ||
           confirmed("Warning", "Max charge time is < 1 minute. Continue anyway?");
}

void start_or_resume(TestStation& station)
{
    if (station.data_log != nullptr) {
        // A log has been loaded: its test goes on, with the reason of a skip on purpose.
        station.lock_controls();
        station.set_phase(PHASE_CHARGING, "User clicked 'Skip'");
        return;
    }
    if (!start_warnings_accepted(station))
        return;
    if (station.begin_log())
        station.set_phase(PHASE_CHARGING, "User clicked 'Start'.");
    else
        show_error("Unable to create log file.");
}

void extend_finished_test(TestStation& station)
{
    if (station.get_cycle_number() >= station.number_of_cycles)
        show_error("Please increase the number of cycles first.");
    else
        station.set_phase(PHASE_CHARGING, "User clicked 'Skip'");
}
}  // namespace

void TestStation::lock_controls()
{
    ui->cbProfile->setEnabled(false);
    ui->pbDirectory->setEnabled(false);
    ui->leProfileName->setEnabled(false);
    ui->leSerialNumber->setEnabled(false);
}

void TestStation::unlock_controls()
{
    ui->cbProfile->setEnabled(true);
    ui->pbDirectory->setEnabled(true);
    ui->leProfileName->setEnabled(true);
    ui->leSerialNumber->setEnabled(true);
}

void TestStation::on_pbStartSkip_clicked()
{
    switch (traits_of(phase).press) {
    case Press::Refused:
        show_error("The 'skip' button should not be clickable at this time.");
        break;
    case Press::Start:
        start_or_resume(*this);
        break;
    case Press::Discharge:
        set_phase(PHASE_DISCHARGING, "User clicked 'Skip'");
        break;
    case Press::EndDischarge:
        set_phase(phase_after_discharge(), "User clicked 'Skip'");
        break;
    case Press::FinishTest:
        set_phase(PHASE_DONE, "User clicked 'Skip'");
        break;
    case Press::ExtendTest:
        extend_finished_test(*this);
        break;
    }
}

void TestStation::on_pbNewTest_clicked()
{
    if (phase != PHASE_IDLE && phase != PHASE_DONE &&
        QMessageBox::question(nullptr, "Are you sure?", "This will abort the test in progress.",
                              QMessageBox::Ok | QMessageBox::Cancel,
                              QMessageBox::Cancel) != QMessageBox::Ok)
        return;
    unload_test_data();
    // A test with a profile starts from the profile's number again.
    const BatteryProfile* profile = BatteryProfiles::profiles.value(ui->cbProfile->currentText());
    if (ui->cbProfile->currentText() == no_profile_text || profile == nullptr)
        return;
    serial_number = profile->serial_number_template;
    populate_ui();
    update_ui();
}

void TestStation::on_pbClose_clicked()
{
    emit sig_close_request(this);
}

void TestStation::on_sbNumberOfCycles_valueChanged(int value)
{
    number_of_cycles = value;
    if (phase == PHASE_FINAL_CHARGE)
        set_phase(PHASE_CHARGING, "user added a cycle");
    update_ui();
    ui->pbSaveProfile->setEnabled(true);
}
