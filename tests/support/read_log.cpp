#include "support/read_log.h"

#include "station/logs/current_log_reader.h"
#include "station/logs/old_log_reader.h"

#include <QTextStream>

#include <algorithm>
#include <cstring>

namespace
{
bool same_points(const Series& a, const Series& b)
{
    return std::equal(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(),
                      [](const QPointF& one, const QPointF& other) {
                          return same_bits(one.x(), other.x()) && same_bits(one.y(), other.y());
                      });
}

bool same_cycle(const ReadCycle& a, const ReadCycle& b)
{
    return a.start_time == b.start_time && same_bits(a.amp_hours, b.amp_hours) &&
           same_bits(a.watt_hours, b.watt_hours) &&
           same_points(a.voltage_vs_amphours, b.voltage_vs_amphours) &&
           same_points(a.current_vs_amphours, b.current_vs_amphours) &&
           same_points(a.internal_resistance, b.internal_resistance);
}

CycleTarget target_of(ReadCycle& cycle)
{
    CycleTarget target;
    target.start_time = &cycle.start_time;
    target.voltage_vs_amphours = &cycle.voltage_vs_amphours;
    target.current_vs_amphours = &cycle.current_vs_amphours;
    target.internal_resistance = &cycle.internal_resistance;
    target.amp_hours = &cycle.amp_hours;
    target.watt_hours = &cycle.watt_hours;
    return target;
}
}  // namespace

ReadLog::ReadLog(const QByteArray& bytes)
{
    QTextStream stream(bytes);
    const QString mark = stream.readLine();
    LogTarget target;
    target.begin_cycle = [this] {
        return target_of(cycles.emplace_back());
    };
    if (mark == "Kestrometer Log")
        accepted = read_current_log(stream, target);
    else if (mark == "Test Parameters:")
        accepted = read_older_log(stream, target);
    profile_name = target.profile_name;
    serial_number = target.serial_number;
    parameters = target.parameters;
}

bool ReadLog::same_as(const ReadLog& other) const
{
    return accepted == other.accepted && profile_name == other.profile_name &&
           serial_number == other.serial_number && same_parameters(parameters, other.parameters) &&
           std::equal(cycles.begin(), cycles.end(), other.cycles.begin(), other.cycles.end(),
                      same_cycle);
}

const ReadCycle& ReadLog::cycle(int index) const
{
    return *std::next(cycles.begin(), index);
}

int ReadLog::row_count() const
{
    int rows = 0;
    for (const ReadCycle& cycle : cycles)
        rows += cycle.voltage_vs_amphours.points.size();
    return rows;
}

bool same_parameters(const TestParameters& a, const TestParameters& b)
{
    return a.number_of_cycles == b.number_of_cycles && a.max_charge_time == b.max_charge_time &&
           a.detect_full_charge == b.detect_full_charge &&
           same_bits(a.low_voltage_cutoff, b.low_voltage_cutoff) &&
           a.prompt_to_discharge == b.prompt_to_discharge &&
           same_bits(a.final_voltage, b.final_voltage) &&
           a.measure_internal_resistance == b.measure_internal_resistance &&
           same_bits(a.internal_resistance_test_interval_ah,
                     b.internal_resistance_test_interval_ah);
}

bool same_bits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}
