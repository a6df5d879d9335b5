#include "support/literal_log_reader.h"

#include "common/date_time.h"
#include "common/parse_int.h"
#include "common/text.h"
#include "common/truncated_int.h"
#include "station/logs/parse_date_time.h"

#include <QTextStream>

namespace
{
bool number(const QString& text, double& value)
{
    bool ok = false;
    const double converted = text.toDouble(&ok);
    if (ok)
        value = converted;
    return ok;
}

bool integer(const QString& text, int& value)
{
    int converted = 0;
    if (!parse_int(text, converted))
        return false;
    value = converted;
    return true;
}

bool choice(const QString& text, const char* yes, const char* no, bool& value)
{
    if (text != yes && text != no)
        return false;
    value = text == yes;
    return true;
}

struct Previous
{
    double time = 0.0;
    double voltage = 0.0;
    double current = 0.0;
};

bool current_row(const QStringList& fields, ReadLog& log, Previous& previous)
{
    if (fields.size() != 4 && fields.size() != 5)
        return false;
    if (fields[0] == "Time (s)")
        return true;
    double time = 0.0;
    double amp_hours = 0.0;
    double voltage = 0.0;
    double current = 0.0;
    if (!number(fields[0], time) || !number(fields[1], amp_hours) || !number(fields[2], voltage) ||
        !number(fields[3], current))
        return false;
    ReadCycle& cycle = log.cycles.back();
    cycle.watt_hours += ((time - previous.time) / 3600.0) * ((previous.current + current) * 0.5) *
                        ((previous.voltage + voltage) * 0.5);
    cycle.voltage_vs_amphours.add(amp_hours, voltage);
    cycle.current_vs_amphours.add(amp_hours, current);
    cycle.amp_hours = amp_hours;
    if (fields.size() == 5) {
        double ohms = 0.0;
        if (!number(fields[4], ohms))
            return false;
        cycle.internal_resistance.add(amp_hours, ohms * 1000.0);
    }
    previous = {time, voltage, current};
    return true;
}

bool current_key(const QString& key, const QString& value, ReadLog& log, char& section)
{
    const int count = int(log.cycles.size());
    if (key == "Battery Name") {
        log.profile_name = value;
        return true;
    }
    if (key == "Serial Number") {
        log.serial_number = value;
        return true;
    }
    if (key == "Charge Number") {
        section = 'C';
        return value == QString::number(count + 1);
    }
    if (key == "Discharge Number") {
        log.cycles.emplace_back();
        section = 'D';
        return value == QString::number(count + 1);
    }
    if (key == "Timestamp")
        return section == 'C' ||
               (section == 'D' && parse_date_time(value, log.cycles.back().start_time,
                                                  Time::ISO_8601_DATE_TIME_FORMAT));
    if (key == "Max Charge Time (h)") {
        double hours = 0.0;
        if (!number(value, hours))
            return false;
        log.parameters.max_charge_time = truncated_int(hours * 3600.0);
        return true;
    }
    if (key == "Detect Full Charge")
        return choice(value, "Yes", "No", log.parameters.detect_full_charge);
    if (key == "Low Voltage Cutoff (V)")
        return number(value, log.parameters.low_voltage_cutoff);
    if (key == "Prompt to Discharge")
        return choice(value, "Yes", "No", log.parameters.prompt_to_discharge);
    if (key == "Measure Internal Resistance")
        return choice(value, "Yes", "No", log.parameters.measure_internal_resistance);
    if (key == "IR Test Interval (Ah)")
        return number(value, log.parameters.internal_resistance_test_interval_ah);
    if (key == "Final Charge (V)")
        return number(value, log.parameters.final_voltage);
    return key == "Software Version";
}

bool read_current(QTextStream& stream, ReadLog& log)
{
    char section = 'X';
    Previous previous;
    while (!stream.atEnd()) {
        const QString line = stream.readLine();
        bool ok = false;
        QString key;
        QString value;
        if (split_at_first(line, key, ":", value))
            ok = current_key(key.trimmed(), value.trimmed(), log, section);
        else if (section == 'C')
            ok = line.split(',').size() == 2;
        else if (section == 'D')
            ok = current_row(line.split(','), log, previous);
        if (!ok)
            return false;
    }
    return true;
}

bool older_header(QTextStream& stream, ReadLog& log, QDateTime& start)
{
    const QStringList first = stream.readLine().split('\t');
    if (first.size() != 10 || first[0] != "Charge Time (s):" || first[2] != "LV Cutoff" ||
        first[4] != "# Cycles:" || first[6] != "Final Voltage:" || first[8] != "Autocycle")
        return false;
    const QString seconds = first[1].contains('.') ? string_before(first[1], ".") : first[1];
    bool autocycle = false;
    if (!integer(seconds, log.parameters.max_charge_time) ||
        !number(first[3], log.parameters.low_voltage_cutoff) ||
        !integer(first[5], log.parameters.number_of_cycles) ||
        !number(first[7], log.parameters.final_voltage) ||
        !choice(first[9], "True", "False", autocycle))
        return false;
    log.parameters.prompt_to_discharge = !autocycle;
    if (stream.readLine() != "Battery Details:")
        return false;
    const QStringList battery = stream.readLine().split('\t');
    if (battery.size() != 8 || battery[0] != "Battery Name:" || battery[2] != "Serial #:" ||
        battery[4] != "Nominal V:" || battery[6] != "Nominal Ah:")
        return false;
    log.profile_name = battery[1];
    log.serial_number = battery[3];
    double dropped = 0.0;
    if (!number(battery[5], dropped) || !number(battery[7], dropped))
        return false;
    if (stream.readLine() != "month/day/year/hour/minute/second:")
        return false;
    const QStringList parts = stream.readLine().split('_');
    if (parts.size() != 6)
        return false;
    int v[6];
    for (int i = 0; i < 6; ++i)
        if (parts[i].contains('-') || !integer(parts[i], v[i]) || v[i] >= (i == 2 ? 65536 : 256))
            return false;
    start = QDateTime(QDate(v[2], v[0], v[1]), QTime(v[3], v[4], v[5], 0), Qt::LocalTime);
    const QStringList titles = stream.readLine().split('\t');
    return (titles.size() == 4 ||
            (titles.size() == 5 && titles[4].contains("Internal Resistance"))) &&
           titles[0] == "Time (s)" && titles[1] == "Amp-Hours (Ah)" && titles[2] == "Voltage (V)" &&
           titles[3] == "Current (A)";
}

bool older_row(const QStringList& fields, ReadLog& log, char section, double& energy,
               Previous& previous)
{
    double time = 0.0;
    double amp_hours = 0.0;
    double voltage = 0.0;
    double current = 0.0;
    if (!number(fields[0], time) || !number(fields[1], amp_hours) || !number(fields[2], voltage) ||
        !number(fields[3], current))
        return false;
    energy += ((time - previous.time) / 3600.0) * ((previous.voltage + voltage) * 0.5) *
              ((previous.current + current) * 0.5);
    if (section != 'D') {
        previous.time = time;
        return true;
    }
    ReadCycle& cycle = log.cycles.back();
    cycle.voltage_vs_amphours.add(amp_hours, voltage);
    cycle.current_vs_amphours.add(amp_hours, current);
    cycle.amp_hours = amp_hours;
    cycle.watt_hours = energy;
    if (fields.size() == 5) {
        double ohms = 0.0;
        if (!number(fields[4], ohms))
            return false;
        if (ohms > 0.0)
            cycle.internal_resistance.add(amp_hours, ohms * 1000.0);
    }
    previous = {time, voltage, current};
    return true;
}

bool read_older(QTextStream& stream, ReadLog& log)
{
    QDateTime start;
    if (!older_header(stream, log, start))
        return false;
    char section = 'X';
    double energy = 0.0;
    Previous previous;
    while (!stream.atEnd()) {
        const QStringList fields = stream.readLine().replace(": ", ":\t").split('\t');
        const int count = fields.size();
        if (count == 4 || count == 5) {
            if (!older_row(fields, log, section, energy, previous))
                return false;
        } else if (count == 1 && fields[0] == "Test Complete") {
            section = 'X';
        } else if ((count == 1 && fields[0] == "Final Charge") ||
                   (count == 2 && fields[0] == "Charge cycle:")) {
            section = 'C';
            previous.time = 0.0;
        } else if (count == 2 && fields[0] == "Discharge cycle:") {
            log.cycles.emplace_back().start_time = start;
            section = 'D';
            energy = 0.0;
            previous = Previous();
        } else {
            return false;
        }
    }
    return true;
}
}  // namespace

void read_literally(const QByteArray& bytes, ReadLog& log)
{
    QTextStream stream(bytes);
    const QString mark = stream.readLine();
    if (mark == "Kestrometer Log")
        log.accepted = read_current(stream, log);
    else if (mark == "Test Parameters:")
        log.accepted = read_older(stream, log);
}
