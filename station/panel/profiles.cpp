#include "station/test_station.h"

#include "ui_test_station.h"

#include "common/file.h"
#include "common/message_boxes.h"
#include "config/battery_profiles.h"
#include "station/panel/combobox_items.h"

#include <QMessageBox>

namespace
{
/** Plain on purpose: a name that looks like markup is shown as it stands. */
QMessageBox::StandardButton ask(const QString& caption, const QString& text,
                                QMessageBox::StandardButtons buttons)
{
    QMessageBox box(QMessageBox::Question, caption, text, buttons);
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(QMessageBox::No);
    return QMessageBox::StandardButton(box.exec());
}

TestParameters parameters_of(const BatteryProfile& profile)
{
    TestParameters parameters;
    parameters.number_of_cycles = profile.number_of_cycles;
    parameters.max_charge_time = profile.max_charge_time_sec;
    parameters.low_voltage_cutoff = profile.low_voltage_cutoff;
    parameters.final_voltage = profile.final_voltage;
    parameters.detect_full_charge = profile.detect_full_charge;
    parameters.prompt_to_discharge = profile.prompt_to_discharge;
    parameters.measure_internal_resistance = profile.measure_internal_resistance;
    parameters.internal_resistance_test_interval_ah = profile.ir_test_interval_ah;
    return parameters;
}

void store(const TestParameters& parameters, BatteryProfile& profile)
{
    profile.number_of_cycles = parameters.number_of_cycles;
    profile.max_charge_time_sec = parameters.max_charge_time;
    profile.low_voltage_cutoff = parameters.low_voltage_cutoff;
    profile.final_voltage = parameters.final_voltage;
    profile.detect_full_charge = parameters.detect_full_charge;
    profile.prompt_to_discharge = parameters.prompt_to_discharge;
    profile.measure_internal_resistance = parameters.measure_internal_resistance;
    profile.ir_test_interval_ah = parameters.internal_resistance_test_interval_ah;
}

/** A number that the operator typed gives way only to a template that it lacks, and on request. */
bool template_replaces_number(const TestStation& station, const QString& serial_number_template)
{
    if (!station.serial_number_edited)
        return true;
    if (station.serial_number.contains(serial_number_template))
        return false;
    return ask("Overwrite serial number?",
               QString("Overwrite %1 with %2?").arg(station.serial_number, serial_number_template),
               QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

bool serial_number_accepted(const TestStation& station)
{
    if (!File::contains_unsafe_filename_characters(station.serial_number))
        return true;
    show_error(station.ui->laBadSerialNumber->text());
    return false;
}

/** Lets the operator make the present number the template. False if nothing is to be saved. */
bool settle_template(TestStation& station, BatteryProfile& profile)
{
    if (profile.serial_number_template == station.serial_number)
        return true;
    const auto answer =
        ask("Overwrite Serial Number Template?",
            QString("Replace serial number template '%1' in test profile with '%2'?")
                .arg(profile.serial_number_template, station.serial_number),
            QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (answer != QMessageBox::Yes)
        return answer == QMessageBox::No;
    if (!serial_number_accepted(station))
        return false;
    profile.serial_number_template = station.serial_number;
    station.serial_number_edited = false;
    return true;
}

/** Without a template on purpose: one comes only from saving the profile once more. */
BatteryProfile* add_profile(const QString& description)
{
    auto* profile = new BatteryProfile;
    profile->description = description;
    BatteryProfiles::profiles.insert(description, profile);
    return profile;
}

void refill_profile_boxes()
{
    const QStringList choices =
        QStringList(TestStation::no_profile_text) + BatteryProfiles::get_all_descriptions();
    for (const TestStation* station : qAsConst(TestStation::all_instances))
        set_combobox_items(station->ui->cbProfile, choices);
}
}  // namespace

void TestStation::on_cbProfile_currentTextChanged(const QString& text)
{
    if (text == no_profile_text || text.isEmpty())
        return;
    const BatteryProfile* profile = BatteryProfiles::profiles.value(text);
    if (profile == nullptr)
        return;
    profile_name = profile->description;
    take(parameters_of(*profile));
    if (template_replaces_number(*this, profile->serial_number_template)) {
        serial_number = profile->serial_number_template;
        serial_number_edited = false;
    }
    populate_ui();
    // The slots of the controls may just have enabled it, and nothing differs from the profile.
    ui->pbSaveProfile->setEnabled(false);
    ui->pbDeleteProfile->setEnabled(true);
    update_ui();
}

void TestStation::on_pbSaveProfile_clicked()
{
    if (profile_name.isEmpty()) {
        show_error("Enter a profile name first.");
        return;
    }
    BatteryProfile* profile = BatteryProfiles::profiles.value(profile_name);
    const bool is_new = profile == nullptr;
    if (is_new ? !serial_number_accepted(*this) : !settle_template(*this, *profile))
        return;
    if (is_new)
        profile = add_profile(profile_name);
    store(parameters(), *profile);
    BatteryProfiles::save();
    if (is_new)
        refill_profile_boxes();
    ui->cbProfile->setCurrentText(profile->description);
    ui->pbSaveProfile->setEnabled(false);
    ui->pbDeleteProfile->setEnabled(true);
}

void TestStation::on_pbDeleteProfile_clicked()
{
    const QString name = ui->cbProfile->currentText();
    if (name == no_profile_text) {
        show_error("You must select a profile before it can be deleted.");
        return;
    }
    // The question follows all the same: the name is to leave the boxes.
    if (!BatteryProfiles::profiles.contains(name))
        show_error(QString("Cannot find profile '%1' to delete it.").arg(name));
    if (ask("Are you sure?", QString("Do you really want to delete the profile '%1'?").arg(name),
            QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;
    ui->pbDeleteProfile->setEnabled(false);
    delete BatteryProfiles::profiles.take(name);
    BatteryProfiles::save();
    for (TestStation* station : qAsConst(all_instances)) {
        if (station->ui->cbProfile->currentText() == name)
            station->ui->cbProfile->setCurrentText(no_profile_text);
    }
    refill_profile_boxes();
    show_notice(QString("The profile '%1' has been deleted.").arg(name));
}
