#include "station/logs/log_format.h"

#include "common/build_info.h"
#include "common/date_time.h"
#include "common/number_row.h"

namespace LogFormat
{
namespace
{
QString yes_or_no(bool flag)
{
    return flag ? "Yes" : "No";
}

QString hours(int seconds)
{
    return QString("Max Charge Time (h):         %1\n").arg(seconds / 3600);
}

QString timestamp(const QDateTime& start)
{
    return QString("Timestamp:                   %1\n")
        .arg(start.toString(Time::ISO_8601_DATE_TIME_FORMAT));
}

QString limits(const TestParameters& parameters)
{
    return hours(parameters.max_charge_time) +
           QString("Detect Full Charge:          %1\n")
               .arg(yes_or_no(parameters.detect_full_charge)) +
           QString("Low Voltage Cutoff (V):      %1\n").arg(parameters.low_voltage_cutoff) +
           QString("Prompt to Discharge:         %1\n")
               .arg(yes_or_no(parameters.prompt_to_discharge)) +
           QString("Final Charge (V):            %1\n").arg(parameters.final_voltage) +
           QString("Measure Internal Resistance: %1\n")
               .arg(yes_or_no(parameters.measure_internal_resistance));
}

QString interval(const TestParameters& parameters)
{
    if (!parameters.measure_internal_resistance)
        return QString();
    return QString("IR Test Interval (Ah):       %1\n")
        .arg(parameters.internal_resistance_test_interval_ah);
}
}  // namespace

QString file_header(const QString& battery_name, const QString& serial_number)
{
    return "Kestrometer Log\n" + QString("Battery Name:  %1\n").arg(battery_name) +
           QString("Serial Number: %1\n").arg(serial_number);
}

QString charge_section_header(const Section& section)
{
    return QString("Charge Number:               %1\n").arg(section.number) +
           timestamp(section.start) + limits(section.parameters) +
           QString("Software Version:            %1, %2\n")
               .arg(BuildInfo::version, BuildInfo::date) +
           interval(section.parameters) + CHARGE_TITLES + '\n';
}

QString discharge_section_header(const Section& section)
{
    return QString("Discharge Number:            %1\n").arg(section.number) +
           timestamp(section.start) + limits(section.parameters) + interval(section.parameters) +
           DISCHARGE_TITLES + '\n';
}

void put_charge_row(NumberRow& row, double time, double voltage)
{
    row.prepend('\n');
    row.prepend_fixed(voltage, 2);
    row.prepend(',');
    row.prepend_fixed(time, 1);
}

void put_discharge_row(NumberRow& row, double time, double amp_hours, double voltage,
                       double current, double ir)
{
    row.prepend('\n');
    if (ir != 0.0) {
        row.prepend_fixed(ir, 3);
        row.prepend(',');
    }
    row.prepend_fixed(current, 2);
    row.prepend(',');
    row.prepend_fixed(voltage, 2);
    row.prepend(',');
    row.prepend_fixed(amp_hours, 3);
    row.prepend(',');
    row.prepend_fixed(time, 1);
}

QString event_line(const QDateTime& time, const QString& text)
{
    return time.toString(Time::ISO_8601_DATE_TIME_FORMAT) + ' ' + text + '\n';
}
}  // namespace LogFormat
