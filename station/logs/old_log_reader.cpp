#include "station/logs/old_log_reader.h"

#include "common/parse_int.h"
#include "common/text.h"
#include "station/logs/log_row.h"

#include <QTextStream>

#include <initializer_list>

namespace
{
constexpr int LEAST_ROW_FIELDS = 4;
constexpr int MOST_ROW_FIELDS = 5;
constexpr int BYTE_LIMIT = 256;
constexpr int YEAR_LIMIT = 65536;

/** Whether `fields` are pairs of a label and a value, with just these labels. */
bool are_labelled(const QStringList& fields, std::initializer_list<const char*> labels)
{
    if (fields.size() != 2 * int(labels.size()))
        return false;
    int at = 0;
    for (const char* label : labels) {
        if (fields[at] != label)
            return false;
        at += 2;
    }
    return true;
}

bool is_number(const QString& text)
{
    double dropped = 0.0;
    return read_number(text, dropped);
}

bool read_int(const QString& text, int& value)
{
    int number = 0;
    if (!parse_int(text, number))
        return false;
    value = number;
    return true;
}

/** Decimals are cut off. */
bool read_seconds(const QString& text, int& seconds)
{
    return read_int(text.contains('.') ? string_before(text, ".") : text, seconds);
}

/** Refuses "-0" as well. */
bool read_unsigned(const QString& text, int limit, int& value)
{
    return !text.contains('-') && read_int(text, value) && value < limit;
}

/** "True" runs the cycles by themselves, which is to say without a prompt. */
bool read_autocycle(const QString& text, bool& prompt_to_discharge)
{
    if (text != "True" && text != "False")
        return false;
    prompt_to_discharge = text == "False";
    return true;
}

QStringList split_line(const QString& line, QChar separator, int most)
{
    // Counted first: garbage may hold a million of them.
    return line.count(separator) < most ? line.split(separator) : QStringList();
}

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
    Pass(QTextStream& log_stream, LogTarget& log_target) : stream(log_stream), target(log_target)
    {
    }

    bool read_header();
    bool read_body();

private:
    bool next_line_is(const char* text);
    bool read_parameters();
    bool read_battery();
    bool read_start();
    bool read_titles();

    bool read_line(QString& line);
    bool read_row(const QStringList& fields);
    void take_row(const LogRow& row);
    void take_resistance(const LogRow& row);
    bool read_lone_marker(const QString& marker);
    bool read_numbered_marker(const QString& marker);
    void begin_charge();
    void begin_discharge();

    QTextStream& stream;
    LogTarget& target;
    CycleTarget cycle;  ///< the last one begun
    QDateTime test_start;
    Section section = Section::None;
    double energy = 0.0;  ///< watt-hours
    double previous_time = 0.0;
    double previous_voltage = 0.0;
    double previous_current = 0.0;
};

bool Pass::read_header()
{
    return read_parameters() && next_line_is("Battery Details:") && read_battery() &&
           next_line_is("month/day/year/hour/minute/second:") && read_start() && read_titles();
}

bool Pass::next_line_is(const char* text)
{
    return stream.readLine() == text;
}

bool Pass::read_parameters()
{
    const QStringList fields = split_line(stream.readLine(), '\t', 10);
    return are_labelled(fields, {"Charge Time (s):", "LV Cutoff",
                                 "# Cycles:", "Final Voltage:", "Autocycle"}) &&
           read_seconds(fields[1], target.parameters.max_charge_time) &&
           read_number(fields[3], target.parameters.low_voltage_cutoff) &&
           read_int(fields[5], target.parameters.number_of_cycles) &&
           read_number(fields[7], target.parameters.final_voltage) &&
           read_autocycle(fields[9], target.parameters.prompt_to_discharge);
}

bool Pass::read_battery()
{
    const QStringList fields = split_line(stream.readLine(), '\t', 8);
    if (!are_labelled(fields, {"Battery Name:", "Serial #:", "Nominal V:", "Nominal Ah:"}))
        return false;
    target.profile_name = fields[1];
    target.serial_number = fields[3];
    return is_number(fields[5]) && is_number(fields[7]);
}

/** A date that is none, of month 13 for one, is accepted on purpose: its cycles have no start then. */
bool Pass::read_start()
{
    const QStringList fields = split_line(stream.readLine(), '_', 6);
    if (fields.size() != 6)
        return false;
    constexpr int LIMITS[] = {BYTE_LIMIT, BYTE_LIMIT, YEAR_LIMIT,
                              BYTE_LIMIT, BYTE_LIMIT, BYTE_LIMIT};
    int values[6] = {};
    for (int i = 0; i < 6; ++i)
        if (!read_unsigned(fields[i], LIMITS[i], values[i]))
            return false;
    const auto& [month, day, year, hour, minute, second] = values;
    test_start = QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::LocalTime);
    return true;
}

bool Pass::read_titles()
{
    const QStringList fields = split_line(stream.readLine(), '\t', MOST_ROW_FIELDS);
    if (fields.size() < LEAST_ROW_FIELDS)
        return false;
    return fields[0] == "Time (s)" && fields[1] == "Amp-Hours (Ah)" && fields[2] == "Voltage (V)" &&
           fields[3] == "Current (A)" &&
           (fields.size() == LEAST_ROW_FIELDS || fields[4].contains("Internal Resistance"));
}

bool Pass::read_body()
{
    QString line;
    while (!stream.atEnd()) {
        stream.readLineInto(&line);
        if (!read_line(line))
            return false;
    }
    return true;
}

bool Pass::read_line(QString& line)
{
    // Nearly every line of a log is such a row, and a row of plain numbers holds no colon.
    LogRow row;
    if (read_plain_row(line, '\t', row)) {
        take_row(row);
        take_resistance(row);
        return true;
    }
    line.replace(": ", ":\t");
    const QStringList fields = split_line(line, '\t', MOST_ROW_FIELDS);
    switch (fields.size()) {
    case 1:
        return read_lone_marker(fields[0]);
    case 2:
        return read_numbered_marker(fields[0]);
    case LEAST_ROW_FIELDS:
    case MOST_ROW_FIELDS:
        return read_row(fields);
    default:
        return false;
    }
}

/** A row of an unusual form. Outside of a discharge nobody looks at its resistance. */
bool Pass::read_row(const QStringList& fields)
{
    LogRow row;
    if (!read_first_columns(fields, row))
        return false;
    take_row(row);
    row.has_resistance = section == Section::Discharge && fields.size() == MOST_ROW_FIELDS;
    if (row.has_resistance && !read_number(fields[4], row.resistance))
        return false;
    take_resistance(row);
    return true;
}

void Pass::take_row(const LogRow& row)
{
    energy += ((row.time - previous_time) / 3600.0) * ((previous_voltage + row.voltage) * 0.5) *
              ((previous_current + row.current) * 0.5);
    previous_time = row.time;
    if (section != Section::Discharge)
        return;
    cycle.voltage_vs_amphours->add(row.amp_hours, row.voltage);
    cycle.current_vs_amphours->add(row.amp_hours, row.current);
    *cycle.amp_hours = row.amp_hours;
    *cycle.watt_hours = energy;
    previous_voltage = row.voltage;
    previous_current = row.current;
}

/** Unlike in a current log, a resistance of zero or below is left out. */
void Pass::take_resistance(const LogRow& row)
{
    if (section == Section::Discharge && row.has_resistance && row.resistance > 0.0)
        cycle.internal_resistance->add(row.amp_hours, row.resistance * 1000.0);
}

bool Pass::read_lone_marker(const QString& marker)
{
    if (marker == "Final Charge") {
        begin_charge();
        return true;
    }
    if (marker == "Test Complete") {
        section = Section::None;
        return true;
    }
    return false;
}

bool Pass::read_numbered_marker(const QString& marker)
{
    if (marker == "Charge cycle:") {
        begin_charge();
        return true;
    }
    if (marker == "Discharge cycle:") {
        begin_discharge();
        return true;
    }
    return false;
}

void Pass::begin_charge()
{
    section = Section::Charge;
    previous_time = 0.0;
}

void Pass::begin_discharge()
{
    cycle = target.begin_cycle();
    *cycle.start_time = test_start;
    section = Section::Discharge;
    energy = 0.0;
    previous_time = 0.0;
    previous_voltage = 0.0;
    previous_current = 0.0;
}
}  // namespace

bool read_older_log(QTextStream& stream, LogTarget& target)
{
    Pass pass(stream, target);
    return pass.read_header() && pass.read_body();
}
