#include "support/read_log.h"

#include "station/logs/log_reader.h"

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

/** Fills the cycles and the rest of `log`. */
class ReadLogSink final : public LogSink
{
public:
    explicit ReadLogSink(ReadLog& filled) : log(filled)
    {
    }

    void begin_discharge(const LogLine&) override
    {
        log.cycles.emplace_back();
    }

    void take_discharge_start(const QDateTime& start) override
    {
        log.cycles.back().start_time = start;
    }

    void take_row(const LogRow& row, const LogLine&) override
    {
        ReadCycle& cycle = log.cycles.back();
        cycle.voltage_vs_amphours.add(row.amp_hours, row.voltage);
        cycle.current_vs_amphours.add(row.amp_hours, row.current);
        if (row.has_resistance)
            cycle.internal_resistance.add(row.amp_hours, row.resistance * 1000.0);
        cycle.amp_hours = row.amp_hours;
        cycle.watt_hours = row.watt_hours;
    }

    void refuse(const LogRefusal& refusal) override
    {
        log.refusal = refusal;
    }

private:
    ReadLog& log;
};
}  // namespace

ReadLog::ReadLog(const QByteArray& bytes)
{
    QTextStream stream(bytes);
    ReadLogSink sink(*this);
    accepted = read_log(stream, sink);
    profile_name = sink.profile_name;
    serial_number = sink.serial_number;
    parameters = sink.parameters;
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
