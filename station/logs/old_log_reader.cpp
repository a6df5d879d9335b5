#include "station/logs/old_log_reader.h"

#include "common/parse_int.h"
#include "common/text.h"
#include "station/logs/log_row.h"
#include "station/logs/log_text.h"

#include <QTextStream>

#include <initializer_list>

namespace
{
constexpr int BYTE_LIMIT = 256;
constexpr int YEAR_LIMIT = 65536;

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

QString wrong_fields(int found, int least, int most)
{
    QString text = QString("%1 fields instead of %2").arg(found).arg(least);
    if (most != least)
        text += QString(" or %1").arg(most);
    return text;
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
    Pass(QTextStream& log_stream, LogSink& log_sink) : stream(log_stream), sink(log_sink)
    {
    }

    bool read_header();
    bool read_body();

private:
    bool next_line();
    bool next_line_is(const char* text);
    bool next_fields(QChar field_separator, int least, int most);
    bool next_pairs(std::initializer_list<const char*> labels);
    bool read_parameters();
    bool read_battery();
    bool read_start();
    bool read_titles();
    bool take_number(int index, double& value);
    bool take_autocycle(int index);
    bool check_field(int index, bool right, const char* what);

    bool read_line();
    bool read_row();
    void take_row(LogRow& row);
    bool read_lone_marker();
    bool read_numbered_marker();
    bool begin_charge();
    bool begin_discharge();
    bool refuse(int column, const QString& reason);
    bool refuse_field(int index, const QString& reason);

    QTextStream& stream;
    LogSink& sink;
    LogLine line{1, QString()};  ///< the first is the mark, read already
    QChar separator = '\t';
    QStringList fields;  ///< of the line
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

/** At the end of the file an empty line, as one that lacks what is due. */
bool Pass::next_line()
{
    ++line.number;
    return stream.readLineInto(&line.text) || refuse(1, "the head of the log ends here");
}

bool Pass::next_line_is(const char* text)
{
    if (!next_line())
        return false;
    return line.text == text || refuse(1, quoted(line.text) + " instead of " + quoted(text));
}

bool Pass::next_fields(QChar field_separator, int least, int most)
{
    if (!next_line())
        return false;
    separator = field_separator;
    // Counted first: garbage may hold a million of them.
    const int found = line.text.count(separator) + 1;
    if (found < least || found > most)
        return refuse(1, wrong_fields(found, least, most));
    fields = line.text.split(separator);
    return true;
}

/** A line of labels, just these, each with a value behind it. */
bool Pass::next_pairs(std::initializer_list<const char*> labels)
{
    const int count = 2 * int(labels.size());
    if (!next_fields('\t', count, count))
        return false;
    int at = 0;
    for (const char* label : labels) {
        if (fields[at] != label)
            return refuse_field(at, quoted(fields[at]) + " instead of " + quoted(label));
        at += 2;
    }
    return true;
}

bool Pass::read_parameters()
{
    TestParameters& to = sink.parameters;
    return next_pairs(
               {"Charge Time (s):", "LV Cutoff", "# Cycles:", "Final Voltage:", "Autocycle"}) &&
           check_field(1, read_seconds(fields[1], to.max_charge_time), "whole number") &&
           take_number(3, to.low_voltage_cutoff) &&
           check_field(5, read_int(fields[5], to.number_of_cycles), "whole number") &&
           take_number(7, to.final_voltage) && take_autocycle(9);
}

bool Pass::read_battery()
{
    if (!next_pairs({"Battery Name:", "Serial #:", "Nominal V:", "Nominal Ah:"}))
        return false;
    sink.profile_name = fields[1];
    sink.serial_number = fields[3];
    double dropped = 0.0;
    return take_number(5, dropped) && take_number(7, dropped);
}

/** A date that is none, of month 13 for one, is accepted on purpose: its cycles have no start then. */
bool Pass::read_start()
{
    if (!next_fields('_', 6, 6))
        return false;
    constexpr int LIMITS[] = {BYTE_LIMIT, BYTE_LIMIT, YEAR_LIMIT,
                              BYTE_LIMIT, BYTE_LIMIT, BYTE_LIMIT};
    int values[6] = {};
    for (int i = 0; i < 6; ++i)
        if (!check_field(i, read_unsigned(fields[i], LIMITS[i], values[i]), "part of a date"))
            return false;
    const auto& [month, day, year, hour, minute, second] = values;
    test_start = QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::LocalTime);
    return true;
}

bool Pass::read_titles()
{
    constexpr const char* TITLES[] = {"Time (s)", "Amp-Hours (Ah)", "Voltage (V)", "Current (A)"};
    if (!next_fields('\t', LEAST_COLUMNS, MOST_COLUMNS))
        return false;
    for (int i = 0; i < LEAST_COLUMNS; ++i)
        if (fields[i] != TITLES[i])
            return refuse_field(i, quoted(fields[i]) + " instead of " + quoted(TITLES[i]));
    if (fields.size() == LEAST_COLUMNS || fields[4].contains("Internal Resistance"))
        return true;
    return refuse_field(4, quoted(fields[4]) + " instead of 'Internal Resistance'");
}

bool Pass::take_number(int index, double& value)
{
    return check_field(index, read_number(fields[index], value), "number");
}

/** "True" runs the cycles by themselves, which is to say without a prompt. */
bool Pass::take_autocycle(int index)
{
    const QString& text = fields[index];
    if (text != "True" && text != "False")
        return refuse_field(index, quoted(text) + " is neither 'True' nor 'False'");
    sink.parameters.prompt_to_discharge = text == "False";
    return true;
}

bool Pass::check_field(int index, bool right, const char* what)
{
    return right || refuse_field(index, quoted(fields[index]) + " is no " + what);
}

bool Pass::read_body()
{
    separator = '\t';
    while (!stream.atEnd()) {
        stream.readLineInto(&line.text);
        ++line.number;
        if (!read_line())
            return false;
    }
    return true;
}

bool Pass::read_line()
{
    // Nearly every line of a log is such a row, and a row of plain numbers holds no colon.
    LogRow row;
    if (read_plain_row(line.text, '\t', row)) {
        take_row(row);
        return true;
    }
    line.text.replace(": ", ":\t");
    // Counted first: garbage may hold a million of them.
    const int count = line.text.count('\t') + 1;
    if (count == 3 || count > MOST_COLUMNS)
        return refuse(1, wrong_columns(line.text, count - 1, "4 or 5"));
    fields = line.text.split('\t');
    if (count >= LEAST_COLUMNS)
        return read_row();
    return count == 1 ? read_lone_marker() : read_numbered_marker();
}

/** A row of an unusual form. Outside of a discharge nobody looks at its resistance. */
bool Pass::read_row()
{
    LogRow row;
    const int numbers = read_columns(fields, row);
    if (numbers >= LEAST_COLUMNS)
        take_row(row);
    const bool accepted =
        numbers == fields.size() || (numbers == LEAST_COLUMNS && section != Section::Discharge);
    return accepted || refuse_field(numbers, no_number(fields[numbers]));
}

/** Unlike in a current log, a resistance of zero or below is left out. */
void Pass::take_row(LogRow& row)
{
    energy += ((row.time - previous_time) / 3600.0) * ((previous_voltage + row.voltage) * 0.5) *
              ((previous_current + row.current) * 0.5);
    previous_time = row.time;
    if (section != Section::Discharge) {
        sink.take_other_line(line);
        return;
    }
    row.watt_hours = energy;
    row.has_resistance = row.has_resistance && row.resistance > 0.0;
    previous_voltage = row.voltage;
    previous_current = row.current;
    sink.take_row(row, line);
}

bool Pass::read_lone_marker()
{
    if (fields[0] == "Final Charge")
        return begin_charge();
    if (fields[0] != "Test Complete")
        return refuse(1, line.text.isEmpty() ? "an empty line" : unknown_name(line.text));
    section = Section::None;
    sink.end_test(line);
    return true;
}

bool Pass::read_numbered_marker()
{
    if (fields[0] == "Charge cycle:")
        return begin_charge();
    if (fields[0] == "Discharge cycle:")
        return begin_discharge();
    return refuse(1, unknown_name(fields[0]));
}

bool Pass::begin_charge()
{
    section = Section::Charge;
    previous_time = 0.0;
    sink.begin_charge(line);
    sink.take_charge_start(test_start);
    return true;
}

bool Pass::begin_discharge()
{
    sink.begin_discharge(line);
    sink.take_discharge_start(test_start);
    section = Section::Discharge;
    energy = 0.0;
    previous_time = 0.0;
    previous_voltage = 0.0;
    previous_current = 0.0;
    return true;
}

bool Pass::refuse(int column, const QString& reason)
{
    sink.refuse({line.number, column, reason});
    return false;
}

bool Pass::refuse_field(int index, const QString& reason)
{
    return refuse(field_column(line.text, separator, index), reason);
}
}  // namespace

bool read_older_log(QTextStream& stream, LogSink& sink)
{
    Pass pass(stream, sink);
    return pass.read_header() && pass.read_body();
}
