#include "support/profile_file.h"

#include "config/battery_profiles.h"
#include "config/settings.h"
#include "support/test_files.h"

#include <QDir>
#include <QFile>

const QByteArray FIRST_PROFILE_FILE = "[Sample Profile]\n"
                                      "serial_number_template=SP000\n"
                                      "number_of_cycles=1\n"
                                      "max_charge_time_hr=6\n"
                                      "low_voltage_cutoff=30\n"
                                      "final_voltage=36\n"
                                      "detect_full_charge=No\n"
                                      "prompt_to_discharge=No\n"
                                      "measure_internal_resistance=Yes\n"
                                      "ir_test_interval_ah=2\n"
                                      "\n";

void forget_profiles()
{
    qDeleteAll(BatteryProfiles::profiles);
    BatteryProfiles::profiles.clear();
    QFile::remove(BatteryProfiles::get_filename());
}

bool put_profile_file(const QByteArray& content)
{
    return QDir().mkpath(Settings::get_settings_dir()) &&
           write_file(BatteryProfiles::get_filename(), content);
}

void load_test_profiles(const QByteArray& content)
{
    forget_profiles();
    if (!put_profile_file(content) || !BatteryProfiles::load())
        qFatal("The profiles of the test cannot be loaded.");
}

QByteArray profile_file_content()
{
    return content_of(BatteryProfiles::get_filename());
}

QString text_of(const BatteryProfile& profile)
{
    return QStringList{profile.description,
                       profile.serial_number_template,
                       QString::number(profile.number_of_cycles),
                       QString::number(profile.max_charge_time_sec),
                       number_text(profile.low_voltage_cutoff),
                       number_text(profile.final_voltage),
                       flag_text(profile.detect_full_charge),
                       flag_text(profile.prompt_to_discharge),
                       flag_text(profile.measure_internal_resistance),
                       number_text(profile.ir_test_interval_ah),
                       flag_text(profile.on_disk)}
        .join('|');
}

QString profile_text(const QString& description)
{
    const BatteryProfile* profile = BatteryProfiles::profiles.value(description);
    return profile != nullptr ? text_of(*profile) : QString();
}

QString number_text(double value)
{
    return QString::number(value, 'g', 17);
}

QString flag_text(bool value)
{
    return value ? "yes" : "no";
}
