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
    QLatin1String takes;
};

using P = BatteryProfile;

const QLatin1String TEXT("a text");
const QLatin1String WHOLE_NUMBER("a whole number");
const QLatin1String NUMBER("a number with a decimal point");
const QLatin1String YES_OR_NO("Yes or No");

// In the order of the file.
const Field FIELDS[] = {
    {QLatin1String("serial_number_template"), read_text<&P::serial_number_template>,
     written<&P::serial_number_template>, TEXT},
    {QLatin1String("number_of_cycles"), read_int<&P::number_of_cycles>,
     written<&P::number_of_cycles>, WHOLE_NUMBER},
    {QLatin1String("max_charge_time_hr"), read_hours, written_hours, NUMBER},
    {QLatin1String("low_voltage_cutoff"), read_double<&P::low_voltage_cutoff>,
     written<&P::low_voltage_cutoff>, NUMBER},
    {QLatin1String("final_voltage"), read_double<&P::final_voltage>, written<&P::final_voltage>,
     NUMBER},
    {QLatin1String("detect_full_charge"), read_bool<&P::detect_full_charge>,
     written_bool<&P::detect_full_charge>, YES_OR_NO},
    {QLatin1String("prompt_to_discharge"), read_bool<&P::prompt_to_discharge>,
     written_bool<&P::prompt_to_discharge>, YES_OR_NO},
    {QLatin1String("measure_internal_resistance"), read_bool<&P::measure_internal_resistance>,
     written_bool<&P::measure_internal_resistance>, YES_OR_NO},
    {QLatin1String("ir_test_interval_ah"), read_double<&P::ir_test_interval_ah>,
     written<&P::ir_test_interval_ah>, NUMBER},
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

/** What is wrong with the line; empty for nothing. */
QString read_variable(const QStringRef& line, int equals_sign, BatteryProfile& profile)
{
    const QStringRef key = line.left(equals_sign).trimmed();
    const auto* const field =
        std::find_if(std::begin(FIELDS), std::end(FIELDS),
                     [&key](const Field& candidate) { return key == candidate.key; });
    if (field == std::end(FIELDS))
        return QString("names \"%1\", which no profile has").arg(key.toString());
    const QStringRef value = line.mid(equals_sign + 1).trimmed();
    if (field->read(value, profile))
        return {};
    return QString("gives \"%1\" for %2, which takes %3")
        .arg(value.toString(), field->key, field->takes);
}

/** What is wrong with the line; empty for nothing. */
QString read_line(const QStringRef& line, BatteryProfile*& current)
{
    if (line.isEmpty() || line.startsWith('\''))
        return {};
    if (line.startsWith('[') && line.endsWith(']')) {
        current = add_profile(line);
        return {};
    }
    const int equals_sign = line.indexOf('=');
    // Mere words are passed over on purpose: notes in a file edited by hand do no harm.
    if (equals_sign < 0)
        return {};
    if (current == nullptr)
        return "stands before the first [profile]";
    return read_variable(line, equals_sign, *current);
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
    // Asked by its name on purpose: the object's own exists() takes a link for its target.
    if (!QFile::exists(file.fileName())) {
        insert(sample_profile());
        save();
        return true;
    }
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    Refusal refusal;
    if (read(file, refusal))
        return true;
    // For whoever edits the file by hand; the operator is shown nothing.
    qWarning("%s, line %d cannot be understood.", qPrintable(file.fileName()), refusal.line);
    return false;
}

bool BatteryProfiles::read(QIODevice& device, Refusal& refusal)
{
    QTextStream stream(&device);
    BatteryProfile* current = nullptr;
    QString line;
    for (int number = 1; stream.readLineInto(&line); ++number) {
        const QStringRef trimmed = QStringRef(&line).trimmed();
        const QString reason = read_line(trimmed, current);
        if (reason.isEmpty())
            continue;
        refusal = {number, trimmed.toString(), reason};
        return false;
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
