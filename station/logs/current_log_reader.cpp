#include "station/logs/current_log_reader.h"

#include "common/date_time.h"
#include "common/text.h"
#include "common/truncated_int.h"
#include "station/logs/log_row.h"
#include "station/logs/parse_date_time.h"

#include <QTextStream>

namespace
{
enum class Section
{
    None,
    Charge,
    Discharge
};

bool read_flag(const QString& text, bool& flag)
{
    if (text != "Yes" && text != "No")
        return false;
    flag = text == "Yes";
    return true;
}

/** One pass over the lines. Each step returns false where the log is to be refused. */
class Pass
{
public:
    explicit Pass(LogTarget& log_target) : target(log_target)
    {
    }

    bool read_line(const QString& line);
    bool read_battery_name(const QString& value);
    bool read_serial_number(const QString& value);
    bool begin_charge(const QString& number);
    bool begin_discharge(const QString& number);
    bool read_timestamp(const QString& value);
    bool read_max_charge_time(const QString& value);
    bool read_detect_full_charge(const QString& value);
    bool read_low_voltage_cutoff(const QString& value);
    bool read_prompt_to_discharge(const QString& value);
    bool read_measure_internal_resistance(const QString& value);
    bool read_interval(const QString& value);
    bool read_final_voltage(const QString& value);
    bool skip_value(const QString& value);

private:
    bool read_key_line(const QString& line);
    bool read_row_line(const QString& line);
    bool read_discharge_row(const QString& line);
    void take_row(const LogRow& row);
    void take_resistance(const LogRow& row);

    LogTarget& target;
    CycleTarget cycle;  ///< the last one begun
    int cycle_count = 0;
    Section section = Section::None;
    double previous_time = 0.0;
    double previous_voltage = 0.0;
    double previous_current = 0.0;
};

struct Key
{
    const char* name;
    bool (Pass::*read)(const QString& value);
};

constexpr Key KEYS[] = {
    {"Battery Name", &Pass::read_battery_name},
    {"Serial Number", &Pass::read_serial_number},
    {"Charge Number", &Pass::begin_charge},
    {"Discharge Number", &Pass::begin_discharge},
    {"Timestamp", &Pass::read_timestamp},
    {"Max Charge Time (h)", &Pass::read_max_charge_time},
    {"Detect Full Charge", &Pass::read_detect_full_charge},
    {"Low Voltage Cutoff (V)", &Pass::read_low_voltage_cutoff},
    {"Prompt to Discharge", &Pass::read_prompt_to_discharge},
    {"Measure Internal Resistance", &Pass::read_measure_internal_resistance},
    {"IR Test Interval (Ah)", &Pass::read_interval},
    {"Final Charge (V)", &Pass::read_final_voltage},
    {"Software Version", &Pass::skip_value},
};

bool Pass::read_line(const QString& line)
{
    // Nearly every line of a log is such a row, and a row of plain numbers holds no colon.
    if (section == Section::Discharge) {
        LogRow row;
        if (read_plain_row(line, ',', row)) {
            take_row(row);
            take_resistance(row);
            return true;
        }
    }
    return line.contains(':') ? read_key_line(line) : read_row_line(line);
}

bool Pass::read_key_line(const QString& line)
{
    QString name;
    QString value;
    split_at_first(line, name, ":", value);
    name = name.trimmed();
    for (const Key& key : KEYS)
        if (name == key.name)
            return (this->*key.read)(value.trimmed());
    return false;
}

bool Pass::read_row_line(const QString& line)
{
    switch (section) {
    case Section::None:
        return false;
    case Section::Charge:
        // Titles and rows alike: a charge leaves no curve behind.
        return line.count(',') == 1;
    case Section::Discharge:
        return read_discharge_row(line);
    }
    return false;
}

/** The titles, and rows of an unusual form. */
bool Pass::read_discharge_row(const QString& line)
{
    // Counted first: garbage may hold a million of them.
    const int commas = line.count(',');
    if (commas != 3 && commas != 4)
        return false;
    const QStringList fields = line.split(',');
    if (fields[0] == "Time (s)")
        return true;
    LogRow row;
    if (!read_first_columns(fields, row))
        return false;
    take_row(row);
    row.has_resistance = fields.size() == 5;
    if (row.has_resistance && !read_number(fields[4], row.resistance))
        return false;
    take_resistance(row);
    return true;
}

// The previous values outlive their section on purpose: a log is read by this rule wherever it goes.
// So the first row of a later cycle integrates backwards over the whole cycle before, and that cycle
// shows far fewer watt-hours than the live test did.
void Pass::take_row(const LogRow& row)
{
    *cycle.watt_hours += ((row.time - previous_time) / 3600.0) *
                         ((previous_current + row.current) * 0.5) *
                         ((previous_voltage + row.voltage) * 0.5);
    cycle.voltage_vs_amphours->add(row.amp_hours, row.voltage);
    cycle.current_vs_amphours->add(row.amp_hours, row.current);
    *cycle.amp_hours = row.amp_hours;
    previous_time = row.time;
    previous_voltage = row.voltage;
    previous_current = row.current;
}

void Pass::take_resistance(const LogRow& row)
{
    if (row.has_resistance)
        cycle.internal_resistance->add(row.amp_hours, row.resistance * 1000.0);
}

bool Pass::read_battery_name(const QString& value)
{
    target.profile_name = value;
    return true;
}

bool Pass::read_serial_number(const QString& value)
{
    target.serial_number = value;
    return true;
}

/** Repeated numbers are no fault: a finished test that goes on begins another charge after its last. */
bool Pass::begin_charge(const QString& number)
{
    section = Section::Charge;
    return number == QString::number(cycle_count + 1);
}

bool Pass::begin_discharge(const QString& number)
{
    cycle = target.begin_cycle();
    ++cycle_count;
    section = Section::Discharge;
    return number == QString::number(cycle_count);
}

bool Pass::read_timestamp(const QString& value)
{
    switch (section) {
    case Section::None:
        return false;
    case Section::Charge:
        return true;
    case Section::Discharge:
        return parse_date_time(value, *cycle.start_time, Time::ISO_8601_DATE_TIME_FORMAT);
    }
    return false;
}

bool Pass::read_max_charge_time(const QString& value)
{
    double hours = 0.0;
    if (!read_number(value, hours))
        return false;
    target.parameters.max_charge_time = truncated_int(hours * 3600.0);
    return true;
}

bool Pass::read_detect_full_charge(const QString& value)
{
    return read_flag(value, target.parameters.detect_full_charge);
}

bool Pass::read_low_voltage_cutoff(const QString& value)
{
    return read_number(value, target.parameters.low_voltage_cutoff);
}

bool Pass::read_prompt_to_discharge(const QString& value)
{
    return read_flag(value, target.parameters.prompt_to_discharge);
}

bool Pass::read_measure_internal_resistance(const QString& value)
{
    return read_flag(value, target.parameters.measure_internal_resistance);
}

bool Pass::read_interval(const QString& value)
{
    return read_number(value, target.parameters.internal_resistance_test_interval_ah);
}

bool Pass::read_final_voltage(const QString& value)
{
    return read_number(value, target.parameters.final_voltage);
}

bool Pass::skip_value(const QString&)
{
    return true;
}
}  // namespace

bool read_current_log(QTextStream& stream, LogTarget& target)
{
    Pass pass(target);
    QString line;
    while (!stream.atEnd()) {
        stream.readLineInto(&line);
        if (!pass.read_line(line))
            return false;
    }
    return true;
}
