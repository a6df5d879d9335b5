#include "log/log_json.h"

#include "common/date_time.h"
#include "log/place.h"

#include <QJsonArray>

#include <cmath>

namespace
{
/** Without the digits that summing leaves behind; null if it is no number. */
QJsonValue number(double value)
{
    return std::isfinite(value) ? QJsonValue(std::round(value * 1e6) / 1e6) : QJsonValue();
}

QJsonValue time(const QDateTime& local)
{
    return local.isValid() ? QJsonValue(local.toString("yyyy-MM-ddThh:mm:ss")) : QJsonValue();
}

QJsonObject gap_json(const Gap& gap, const QString& reason)
{
    return {{"line", gap.line},
            {"begin_seconds", number(gap.begin)},
            {"seconds", number(gap.seconds)},
            {"reason", reason.isEmpty() ? QJsonValue() : reason}};
}

QJsonObject rows_json(const Section& section, const EventLog& events)
{
    const RowCount& count = section.count;
    QJsonArray gaps;
    for (const Gap& gap : count.gaps)
        gaps << gap_json(gap, gap_reason(events, section, gap));
    QJsonArray steps;
    for (const ClockStep& step : count.steps)
        steps << QJsonObject{{"line", step.line}, {"seconds", number(step.seconds)}};
    return {{"count", count.rows},
            {"first_seconds", number(count.first_seconds)},
            {"last_seconds", number(count.last_seconds)},
            {"per_second", number(count.rate())},
            {"gap_count", count.gap_count},
            {"gap_seconds", number(count.gap_seconds)},
            {"gaps", gaps},
            {"clock_steps", steps},
            {"clock_steps_back", count.clock_steps_back},
            {"out_of_order", count.rows_out_of_order}};
}

QJsonObject section_json(const LogFile& file, const Section& section)
{
    const auto volts = [&section](double value) {
        return section.count.rows > 0 ? number(value) : QJsonValue();
    };
    return {{"kind", kind_name(section.kind)},
            {"number", section.number},
            {"line", section.line},
            {"start", time(section.start)},
            {"parameters", parameters_json(section.parameters, file.generation)},
            {"rows", rows_json(section, file.events)},
            {"first_volts", volts(section.first_volts)},
            {"lowest_volts", volts(section.lowest_volts)},
            {"last_volts", volts(section.last_volts)}};
}

QJsonValue resistance_json(const Resistance& resistance)
{
    if (resistance.count == 0)
        return QJsonValue();
    return QJsonObject{{"count", resistance.count},
                       {"mean_milliohms", number(resistance.mean)},
                       {"spread_milliohms", number(resistance.spread)},
                       {"lowest_milliohms", number(resistance.lowest)},
                       {"highest_milliohms", number(resistance.highest)}};
}

QJsonObject cycle_json(const Cycle& cycle, const Section& section)
{
    return {{"number", section.number},
            {"section", cycle.section},
            {"start", time(section.start)},
            {"seconds", number(section.count.last_seconds)},
            {"amp_hours", number(cycle.amp_hours)},
            {"watt_hours_loaded", number(cycle.watt_hours_loaded)},
            {"watt_hours_live", number(cycle.watt_hours_live)},
            {"watt_hours_live_error", number(cycle.watt_hours_error)},
            {"watt_hours_held", number(cycle.watt_hours_held)},
            {"resistance", resistance_json(cycle.resistance)}};
}

QJsonObject refusal_json(const LogRefusal& refusal)
{
    return {{"line", refusal.line}, {"column", refusal.column}, {"reason", refusal.reason}};
}

QJsonValue end_json(const EventLog& events)
{
    if (events.changes.isEmpty())
        return QJsonValue();
    const PhaseChange& last = events.changes.last();
    return QJsonObject{{"done", events.end() == TestEnd::Done},
                       {"phase", last.phase},
                       {"time", time(last.time)},
                       {"reason", last.reason}};
}
}  // namespace

QString kind_name(SectionKind kind)
{
    return kind == SectionKind::Charge ? "charge" : "discharge";
}

QString generation_name(LogGeneration generation)
{
    switch (generation) {
    case LogGeneration::Current:
        return "current";
    case LogGeneration::Older:
        return "older";
    case LogGeneration::None:
        break;
    }
    return "none";
}

QJsonObject parameters_json(const TestParameters& parameters, LogGeneration generation)
{
    const bool current = generation == LogGeneration::Current;
    const bool interval = current && parameters.measure_internal_resistance;
    const auto told = [](bool is_told, const QJsonValue& value) {
        return is_told ? value : QJsonValue();
    };
    return {{"max_charge_seconds", parameters.max_charge_time},
            {"detect_full_charge", told(current, parameters.detect_full_charge)},
            {"low_voltage_cutoff_volts", number(parameters.low_voltage_cutoff)},
            {"prompt_to_discharge", parameters.prompt_to_discharge},
            {"final_charge_volts", number(parameters.final_voltage)},
            {"measure_internal_resistance", told(current, parameters.measure_internal_resistance)},
            {"resistance_interval_amp_hours",
             told(interval, number(parameters.internal_resistance_test_interval_ah))},
            {"number_of_cycles", told(!current, parameters.number_of_cycles)}};
}

QJsonObject info_json(const LogFile& file)
{
    QJsonArray sections;
    for (const Section& section : file.sections)
        sections << section_json(file, section);
    QJsonArray cycles;
    for (const Cycle& cycle : file.cycles)
        cycles << cycle_json(cycle, file.sections[cycle.section]);
    return {{"file", file.path},
            {"generation", generation_name(file.generation)},
            {"battery", file.battery},
            {"serial_number", file.serial_number},
            {"loads", file.accepted},
            {"refusal", file.accepted ? QJsonValue() : refusal_json(file.refusal)},
            {"sections", sections},
            {"repeated_sections", file.repeated_sections()},
            {"cycles", cycles},
            {"test_end", end_json(file.events)}};
}

QJsonObject check_json(const LogFile& file, const QString& not_writable)
{
    QJsonArray warnings;
    for (const Warning& warning : file.warnings)
        warnings << QJsonObject{{"line", warning.line == 0 ? QJsonValue() : warning.line},
                                {"text", warning.text}};
    return {{"file", file.path},
            {"loads", file.accepted},
            {"refusal", file.accepted ? QJsonValue() : refusal_json(file.refusal)},
            {"not_writable", not_writable.isEmpty() ? QJsonValue() : not_writable},
            {"warnings", warnings}};
}
