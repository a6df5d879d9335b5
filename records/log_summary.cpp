#include "records/log_summary.h"

LogSummary::LogSummary(LogFile& filled)
    : file(filled), clock_steps(filled.events), held_times(filled.events.held_times())
{
}

void LogSummary::refuse(const LogRefusal& refusal)
{
    file.refusal = refusal;
}

void LogSummary::section_begun(const Section& section)
{
    if (generation == LogGeneration::Current)
        clock_steps.begin_section(section);
    made = Cycle();
    next_held_time = 0;
    has_before = false;
}

void LogSummary::row_read(const Section& section, const Row& row, const LogLine&)
{
    if (section.kind == SectionKind::Charge)
        return;
    if (row.has_resistance) {
        made.resistance.add(row.milliohms);
        made.negative_resistances += row.milliohms < 0.0 ? 1 : 0;
        clock_steps.take_resistance(section, row);
    }
    made.amp_hours = row.amp_hours;
    add_held(section, row);
    before = row;
    has_before = true;
}

// The event log tells whole seconds, and so does the start of a section: the edges are known to a
// second each. Held readings repeat the ones before, which settles it.
void LogSummary::add_held(const Section& section, const Row& row)
{
    const bool repeats = has_before && row.volts == before.volts && row.amps == before.amps;
    if (repeats && in_held_time(section, row.seconds))
        made.watt_hours_held += row.volts * (row.amp_hours - before.amp_hours);
}

bool LogSummary::in_held_time(const Section& section, double seconds)
{
    if (held_times.isEmpty() || !section.start.isValid())
        return false;
    const QDateTime time = section.start.addMSecs(qint64(seconds * 1000.0));
    while (next_held_time < held_times.size() && held_times[next_held_time].end.addSecs(1) < time)
        ++next_held_time;
    return next_held_time < held_times.size() &&
           held_times[next_held_time].begin.addSecs(-1) <= time;
}

void LogSummary::section_ended(const Section& section)
{
    if (section.kind == SectionKind::Discharge) {
        made.section = file.sections.size();
        made.watt_hours_loaded = watt_hours_loaded;
        made.watt_hours_live = energy.watt_hours();
        made.watt_hours_error = energy.error_bound();
        file.cycles << made;
    }
    file.sections << section;
    if (generation == LogGeneration::Current)
        clock_steps.end_section(file.sections.last());
}

void LogSummary::finish(bool accepted)
{
    end_log();
    file.accepted = accepted;
    file.generation = generation;
    file.battery = profile_name;
    file.serial_number = serial_number;
    file.parameters = parameters;
}
