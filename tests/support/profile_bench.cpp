#include "support/profile_bench.h"

#include "support/profile_file.h"

#include "station/test_station.h"

#include <QComboBox>
#include <QPushButton>

const QByteArray THREE_PROFILES = "[Pack A]\n"
                                  "serial_number_template=A-\n"
                                  "number_of_cycles=3\n"
                                  "max_charge_time_hr=2\n"
                                  "low_voltage_cutoff=21.5\n"
                                  "final_voltage=37.5\n"
                                  "detect_full_charge=No\n"
                                  "prompt_to_discharge=No\n"
                                  "measure_internal_resistance=No\n"
                                  "ir_test_interval_ah=1.5\n"
                                  "\n"
                                  "[pack b]\n"
                                  "serial_number_template=B-\n"
                                  "number_of_cycles=5\n"
                                  "max_charge_time_hr=4\n"
                                  "low_voltage_cutoff=18\n"
                                  "final_voltage=24\n"
                                  "detect_full_charge=Yes\n"
                                  "prompt_to_discharge=Yes\n"
                                  "measure_internal_resistance=Yes\n"
                                  "ir_test_interval_ah=0.25\n"
                                  "\n"
                                  "[Plain]\n"
                                  "serial_number_template=\n"
                                  "number_of_cycles=1\n"
                                  "max_charge_time_hr=3\n"
                                  "low_voltage_cutoff=0\n"
                                  "final_voltage=0\n"
                                  "detect_full_charge=No\n"
                                  "prompt_to_discharge=No\n"
                                  "measure_internal_resistance=Yes\n"
                                  "ir_test_interval_ah=0.5\n"
                                  "\n";

namespace
{
QComboBox* box_of(const TestStation& station)
{
    return station.findChild<QComboBox*>("cbProfile");
}
}  // namespace

bool is_question(const SeenBox& box, const QString& caption, const QString& text,
                 QMessageBox::StandardButtons buttons)
{
    return box.caption == caption && box.text == text && box.icon == QMessageBox::Question &&
           box.buttons == buttons && box.default_button == QMessageBox::No && !box.has_parent;
}

bool is_message(const SeenBox& box, QMessageBox::Icon icon, const QString& caption,
                const QString& text)
{
    return box.caption == caption && box.text == text && box.icon == icon &&
           box.buttons == QMessageBox::Ok && !box.has_parent;
}

bool is_error(const SeenBox& box, const QString& text)
{
    return is_message(box, QMessageBox::Warning, "Error", text);
}

ProfileBench::ProfileBench(const QByteArray& profiles) : StationBench(profiles)
{
}

void ProfileBench::choose_profile(const QString& name)
{
    box_of(*station)->setCurrentText(name);
}

void ProfileBench::delete_profile()
{
    answers.click(QMessageBox::Yes);
    answers.click(QMessageBox::Ok);
    press("pbDeleteProfile");
}

bool ProfileBench::save_enabled()
{
    return widget<QPushButton>("pbSaveProfile")->isEnabled();
}

bool ProfileBench::delete_enabled()
{
    return widget<QPushButton>("pbDeleteProfile")->isEnabled();
}

QString selected_profile(const TestStation& station)
{
    return box_of(station)->currentText();
}

QStringList listed_profiles(const TestStation& station)
{
    QStringList names;
    for (int i = 0; i < box_of(station)->count(); ++i)
        names += box_of(station)->itemText(i);
    return names;
}

QString parameters_of(const TestStation& station)
{
    return QStringList{station.profile_name,
                       station.serial_number,
                       QString::number(station.number_of_cycles),
                       QString::number(station.max_charge_time),
                       number_text(station.low_voltage_cutoff),
                       number_text(station.final_voltage),
                       flag_text(station.detect_full_charge),
                       flag_text(station.prompt_to_discharge),
                       flag_text(station.measure_internal_resistance),
                       number_text(station.internal_resistance_test_interval_ah)}
        .join('|');
}
