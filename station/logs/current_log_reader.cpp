#include "station/logs/current_log_reader.h"

#include "common/date_time.h"
#include "common/text.h"
#include "common/truncated_int.h"
#include "station/logs/log_row.h"
#include "station/logs/log_text.h"
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

/** One pass over the lines. Each step returns false where the log is to be refused. */
class Pass
{
public:
    explicit Pass(LogSink& log_sink) : sink(log_sink)
    {
    }

    bool read_line();
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

    LogLine line{1, QString()};  ///< the one to be read; the first is the mark, read already

private:
    bool read_key_line();
    bool read_row_line();
    bool read_charge_row();
    bool read_discharge_row();
    void take_row(LogRow& row);
    bool check_number(const QString& text, int due, const char* section_name);
    bool read_value(const QString& text, double& value);
    bool read_flag(const QString& text, bool& flag);
    bool refuse(int column, const QString& reason);
    bool refuse_value(const QString& reason);

    LogSink& sink;
    int cycle_count = 0;
    Section section = Section::None;
    double watt_hours = 0.0;  ///< of the last cycle begun
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

bool Pass::read_line()
{
    // Nearly every line of a log is such a row, and a row of plain numbers holds no colon.
    if (section == Section::Discharge) {
        LogRow row;
        if (read_plain_row(line.text, ',', row)) {
            take_row(row);
            return true;
        }
    }
    return line.text.contains(':') ? read_key_line() : read_row_line();
}

bool Pass::read_key_line()
{
    QString name;
    QString value;
    split_at_first(line.text, name, ":", value);
    name = name.trimmed();
    for (const Key& key : KEYS)
        if (name == key.name)
            return (this->*key.read)(value.trimmed());
    return refuse(1, unknown_name(name));
}

bool Pass::read_row_line()
{
    switch (section) {
    case Section::None:
        return refuse(1, line.text.isEmpty() ? "an empty line" : "a row before the first section");
    case Section::Charge:
        return read_charge_row();
    case Section::Discharge:
        return read_discharge_row();
    }
    return false;
}

/** Titles and rows alike: a charge leaves no curve behind. */
bool Pass::read_charge_row()
{
    const int commas = line.text.count(',');
    if (commas != 1)
        return refuse(1, wrong_columns(line.text, commas, "2 in a charge"));
    sink.take_other_line(line);
    return true;
}

/** The titles, and rows of an unusual form. */
bool Pass::read_discharge_row()
{
    // Counted first: garbage may hold a million of them.
    const int commas = line.text.count(',');
    if (commas + 1 < LEAST_COLUMNS || commas + 1 > MOST_COLUMNS)
        return refuse(1, wrong_columns(line.text, commas, "4 or 5 in a discharge"));
    const QStringList fields = line.text.split(',');
    if (fields[0] == "Time (s)")
        return true;
    LogRow row;
    const int numbers = read_columns(fields, row);
    if (numbers >= LEAST_COLUMNS)
        take_row(row);
    if (numbers == fields.size())
        return true;
    return refuse(field_column(line.text, ',', numbers), no_number(fields[numbers]));
}

// The previous values outlive their section on purpose: a log is read by this rule wherever it goes.
// So the first row of a later cycle integrates backwards over the whole cycle before, and that cycle
// shows far fewer watt-hours than the live test did.
void Pass::take_row(LogRow& row)
{
    watt_hours += ((row.time - previous_time) / 3600.0) * ((previous_current + row.current) * 0.5) *
                  ((previous_voltage + row.voltage) * 0.5);
    row.watt_hours = watt_hours;
    previous_time = row.time;
    previous_voltage = row.voltage;
    previous_current = row.current;
    sink.take_row(row, line);
}

bool Pass::read_battery_name(const QString& value)
{
    sink.profile_name = value;
    return true;
}

bool Pass::read_serial_number(const QString& value)
{
    sink.serial_number = value;
    return true;
}

/** Repeated numbers are no fault: a finished test that goes on begins another charge after its last. */
bool Pass::begin_charge(const QString& number)
{
    section = Section::Charge;
    sink.begin_charge(line);
    return check_number(number, cycle_count + 1, "charge");
}

bool Pass::begin_discharge(const QString& number)
{
    sink.begin_discharge(line);
    ++cycle_count;
    watt_hours = 0.0;
    section = Section::Discharge;
    return check_number(number, cycle_count, "discharge");
}

bool Pass::check_number(const QString& text, int due, const char* section_name)
{
    if (text == QString::number(due))
        return true;
    return refuse_value(QString("%1 number %2 where %3 is due")
                            .arg(section_name, quoted(text), QString::number(due)));
}

bool Pass::read_timestamp(const QString& value)
{
    if (section == Section::None)
        return refuse(1, "a timestamp before the first section");
    QDateTime start;
    const bool valid = parse_date_time(value, start, Time::ISO_8601_DATE_TIME_FORMAT);
    if (section == Section::Charge) {
        sink.take_charge_start(start);
        return true;
    }
    sink.take_discharge_start(start);
    return valid || refuse_value(quoted(value) + " is no date and time");
}

bool Pass::read_max_charge_time(const QString& value)
{
    double hours = 0.0;
    if (!read_value(value, hours))
        return false;
    sink.parameters.max_charge_time = truncated_int(hours * 3600.0);
    return true;
}

bool Pass::read_detect_full_charge(const QString& value)
{
    return read_flag(value, sink.parameters.detect_full_charge);
}

bool Pass::read_low_voltage_cutoff(const QString& value)
{
    return read_value(value, sink.parameters.low_voltage_cutoff);
}

bool Pass::read_prompt_to_discharge(const QString& value)
{
    return read_flag(value, sink.parameters.prompt_to_discharge);
}

bool Pass::read_measure_internal_resistance(const QString& value)
{
    return read_flag(value, sink.parameters.measure_internal_resistance);
}

bool Pass::read_interval(const QString& value)
{
    return read_value(value, sink.parameters.internal_resistance_test_interval_ah);
}

bool Pass::read_final_voltage(const QString& value)
{
    return read_value(value, sink.parameters.final_voltage);
}

bool Pass::skip_value(const QString&)
{
    return true;
}

bool Pass::read_value(const QString& text, double& value)
{
    return read_number(text, value) || refuse_value(no_number(text));
}

bool Pass::read_flag(const QString& text, bool& flag)
{
    if (text != "Yes" && text != "No")
        return refuse_value(quoted(text) + " is neither 'Yes' nor 'No'");
    flag = text == "Yes";
    return true;
}

bool Pass::refuse(int column, const QString& reason)
{
    sink.refuse({line.number, column, reason});
    return false;
}

bool Pass::refuse_value(const QString& reason)
{
    return refuse(value_column(line.text), reason);
}
}  // namespace

bool read_current_log(QTextStream& stream, LogSink& sink)
{
    Pass pass(sink);
    while (!stream.atEnd()) {
        stream.readLineInto(&pass.line.text);
        ++pass.line.number;
        if (!pass.read_line())
            return false;
    }
    return true;
}

class CurrentLogPass::Pass : public ::Pass
{
public:
    using ::Pass::Pass;
};

CurrentLogPass::CurrentLogPass(LogSink& sink) : pass(std::make_unique<Pass>(sink))
{
}

CurrentLogPass::~CurrentLogPass() = default;

bool CurrentLogPass::take_line(const QString& text)
{
    pass->line.text = text;
    ++pass->line.number;
    return pass->read_line();
}
