#include "config/battery_profiles.h"

#include "common/parse_int.h"
#include "common/text.h"
#include "common/truncated_int.h"
#include "config/settings.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <algorithm>

QMap<QString, BatteryProfile*>& BatteryProfiles::profiles = *new QMap<QString, BatteryProfile*>;

namespace
{
constexpr double SECONDS_PER_HOUR = 3600.0;

template <QString BatteryProfile::*member>
bool read_text(const QStringRef& value, BatteryProfile& profile)
{
    profile.*member = value.toString();
    return true;
}

template <int BatteryProfile::*member>
bool read_int(const QStringRef& value, BatteryProfile& profile)
{
    return parse_int(value.toString(), profile.*member);
}

template <double BatteryProfile::*member>
bool read_double(const QStringRef& value, BatteryProfile& profile)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (ok)
        profile.*member = number;
    return ok;
}

template <bool BatteryProfile::*member>
bool read_bool(const QStringRef& value, BatteryProfile& profile)
{
    profile.*member = value == QLatin1String("Yes");
    return profile.*member || value == QLatin1String("No");
}

bool read_hours(const QStringRef& value, BatteryProfile& profile)
{
    bool ok = false;
    const float hours = value.toFloat(&ok);
    if (ok)
        profile.max_charge_time_sec = truncated_int(double(hours) * SECONDS_PER_HOUR);
    return ok;
}

template <auto member> QString written(const BatteryProfile& profile)
{
    return QString("%1").arg(profile.*member);
}

template <bool BatteryProfile::*member> QString written_bool(const BatteryProfile& profile)
{
    return profile.*member ? "Yes" : "No";
}

/** Whole hours, truncated: the rest of a started hour does not outlast a restart. */
QString written_hours(const BatteryProfile& profile)
{
    return QString::number(profile.max_charge_time_sec / 3600);
}

struct Field
{
    QLatin1String key;
    bool (*read)(const QStringRef& value, BatteryProfile& profile);
    QString (*written)(const BatteryProfile& profile);
};

using P = BatteryProfile;

// In the order of the file.
const Field FIELDS[] = {
    {QLatin1String("serial_number_template"), read_text<&P::serial_number_template>,
     written<&P::serial_number_template>},
    {QLatin1String("number_of_cycles"), read_int<&P::number_of_cycles>,
     written<&P::number_of_cycles>},
    {QLatin1String("max_charge_time_hr"), read_hours, written_hours},
    {QLatin1String("low_voltage_cutoff"), read_double<&P::low_voltage_cutoff>,
     written<&P::low_voltage_cutoff>},
    {QLatin1String("final_voltage"), read_double<&P::final_voltage>, written<&P::final_voltage>},
    {QLatin1String("detect_full_charge"), read_bool<&P::detect_full_charge>,
     written_bool<&P::detect_full_charge>},
    {QLatin1String("prompt_to_discharge"), read_bool<&P::prompt_to_discharge>,
     written_bool<&P::prompt_to_discharge>},
    {QLatin1String("measure_internal_resistance"), read_bool<&P::measure_internal_resistance>,
     written_bool<&P::measure_internal_resistance>},
    {QLatin1String("ir_test_interval_ah"), read_double<&P::ir_test_interval_ah>,
     written<&P::ir_test_interval_ah>},
};

void insert(BatteryProfile* profile)
{
    BatteryProfile*& place = BatteryProfiles::profiles[profile->description];
    delete place;
    place = profile;
}

BatteryProfile* sample_profile()
{
    auto* sample = new BatteryProfile;
    sample->description = "Sample Profile";
    sample->serial_number_template = "SP000";
    sample->max_charge_time_sec = 21600;
    sample->low_voltage_cutoff = 30.0;
    sample->final_voltage = 36.0;
    sample->ir_test_interval_ah = 2.0;
    return sample;
}

/** "[a]b]" names "a": a name ends at the first bracket. */
BatteryProfile* add_profile(const QStringRef& header)
{
    auto* profile = new BatteryProfile;
    profile->description = header.mid(1, header.indexOf(']') - 1).toString();
    profile->on_disk = true;
    insert(profile);
    return profile;
}

bool read_variable(const QStringRef& line, int equals_sign, BatteryProfile& profile)
{
    const QStringRef key = line.left(equals_sign).trimmed();
    const auto* const field =
        std::find_if(std::begin(FIELDS), std::end(FIELDS),
                     [&key](const Field& candidate) { return key == candidate.key; });
    return field != std::end(FIELDS) && field->read(line.mid(equals_sign + 1).trimmed(), profile);
}

bool read_line(const QStringRef& line, BatteryProfile*& current)
{
    if (line.isEmpty() || line.startsWith('\''))
        return true;
    if (line.startsWith('[') && line.endsWith(']')) {
        current = add_profile(line);
        return true;
    }
    const int equals_sign = line.indexOf('=');
    // Mere words are passed over on purpose: notes in a file edited by hand do no harm.
    if (equals_sign < 0)
        return true;
    return current != nullptr && read_variable(line, equals_sign, *current);
}

void write_profile(QTextStream& stream, BatteryProfile& profile)
{
    // A name can have been pasted in several lines, which the panel shows with blanks between them. Here
    // the second one would be a variable, or nothing, and the program could not start any more.
    stream << QString("[%1]\n").arg(in_one_line(profile.description));
    for (const Field& field : FIELDS)
        stream << QString("%1=%2\n").arg(field.key, field.written(profile));
    stream << "\n";
    profile.on_disk = true;
}
}  // namespace

QString BatteryProfiles::get_filename()
{
    return QDir(Settings::get_settings_dir()).filePath("battery_profiles.txt");
}

bool BatteryProfiles::load()
{
    QFile file(get_filename());
    if (!file.exists()) {
        insert(sample_profile());
        save();
        return true;
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    stream.setAutoDetectUnicode(false);
    BatteryProfile* current = nullptr;
    QString line;
    for (int number = 1; stream.readLineInto(&line); ++number) {
        if (!read_line(QStringRef(&line).trimmed(), current)) {
            // For whoever edits the file by hand; the operator is shown nothing.
            qWarning("%s, line %d cannot be understood.", qPrintable(file.fileName()), number);
            return false;
        }
    }
    return true;
}

bool BatteryProfiles::save()
{
    QFile file(get_filename());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream stream(&file);
    const QStringList descriptions = get_all_descriptions();
    for (const QString& description : descriptions)
        write_profile(stream, *profiles[description]);
    return true;
}

QStringList BatteryProfiles::get_all_descriptions()
{
    QStringList descriptions = profiles.keys();
    descriptions.sort(Qt::CaseInsensitive);
    return descriptions;
}
