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
}  // namespace

ReadLog::ReadLog(const QByteArray& bytes)
{
    QTextStream stream(bytes);
    const QString mark = stream.readLine();
    LogTarget log_target = target();
    if (mark == "Kestrometer Log")
        accepted = read_current_log(stream, log_target);
    else if (mark == "Test Parameters:")
        accepted = read_older_log(stream, log_target);
}

bool ReadLog::same_as(const ReadLog& other) const
{
    return accepted == other.accepted && profile_name == other.profile_name &&
           serial_number == other.serial_number && number_of_cycles == other.number_of_cycles &&
           max_charge_time == other.max_charge_time &&
           detect_full_charge == other.detect_full_charge &&
           same_bits(low_voltage_cutoff, other.low_voltage_cutoff) &&
           prompt_to_discharge == other.prompt_to_discharge &&
           same_bits(final_voltage, other.final_voltage) &&
           measure_internal_resistance == other.measure_internal_resistance &&
           same_bits(internal_resistance_test_interval_ah,
                     other.internal_resistance_test_interval_ah) &&
           std::equal(cycles.begin(), cycles.end(), other.cycles.begin(), other.cycles.end(),
                      same_cycle);
}

LogTarget ReadLog::target()
{
    return {profile_name,
            serial_number,
            number_of_cycles,
            max_charge_time,
            detect_full_charge,
            low_voltage_cutoff,
            prompt_to_discharge,
            final_voltage,
            measure_internal_resistance,
            internal_resistance_test_interval_ah,
            [this] {
                ReadCycle& cycle = cycles.emplace_back();
                CycleTarget to;
                to.start_time = &cycle.start_time;
                to.voltage_vs_amphours = &cycle.voltage_vs_amphours;
                to.current_vs_amphours = &cycle.current_vs_amphours;
                to.internal_resistance = &cycle.internal_resistance;
                to.amp_hours = &cycle.amp_hours;
                to.watt_hours = &cycle.watt_hours;
                return to;
            }};
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

bool same_bits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}
