#include "records/section_sink.h"

namespace
{
const QString CHARGE_TITLES = "Time (s),Voltage (V)";

/** A charge's two numbers, or an older log's four or more; false for every other line. */
bool read_charge_row(const QString& text, LogGeneration generation, Row& row)
{
    const bool older = generation == LogGeneration::Older;
    const QStringList fields = text.split(older ? '\t' : ',');
    return fields.size() >= (older ? LEAST_COLUMNS : 2) && read_number(fields[0], row.seconds) &&
           read_number(fields[older ? 2 : 1], row.volts);
}

void count_row(RowCount& count, const Row& row)
{
    if (count.rows == 0) {
        count.first_seconds = row.seconds;
    } else {
        const double interval = row.seconds - count.last_seconds;
        if (interval > RowCount::LONGEST_INTERVAL) {
            ++count.gap_count;
            count.gap_seconds += interval;
            if (count.gaps.size() < RowCount::MOST_GAPS)
                count.gaps.append({row.line, count.last_seconds, interval});
        }
        if (interval < 0.0)
            count.add_step({row.line, interval});
    }
    ++count.rows;
    count.last_seconds = row.seconds;
}

void note_volts(Section& section, double volts)
{
    const bool first = section.count.rows == 1;
    if (first)
        section.first_volts = volts;
    section.lowest_volts = first ? volts : qMin(section.lowest_volts, volts);
    section.last_volts = volts;
}
}  // namespace

void SectionSink::begin_log(LogGeneration log_generation)
{
    generation = log_generation;
}

void SectionSink::begin_charge(const LogLine& line)
{
    begin(SectionKind::Charge, line);
}

void SectionSink::begin_discharge(const LogLine& line)
{
    ++discharges;
    begin(SectionKind::Discharge, line);
}

void SectionSink::end_test(const LogLine&)
{
    end_section();
}

void SectionSink::begin(SectionKind kind, const LogLine& line)
{
    end_section();
    present = Section();
    present.kind = kind;
    present.number = kind == SectionKind::Charge ? discharges + 1 : discharges;
    present.line = line.number;
    energy = LiveEnergy();
    watt_hours_loaded = 0.0;
    amp_hours_before = 0.0;
    inside = true;
    shown = false;
}

void SectionSink::take_charge_start(const QDateTime& start)
{
    present.start = start;
}

void SectionSink::take_discharge_start(const QDateTime& start)
{
    present.start = start;
}

void SectionSink::take_row(const LogRow& log_row, const LogLine& line)
{
    energy.add(log_row.amp_hours, log_row.voltage);
    watt_hours_loaded = log_row.watt_hours;
    Row row;
    row.line = line.number;
    row.seconds = log_row.time;
    row.volts = log_row.voltage;
    row.amps = log_row.current;
    row.amp_hours = log_row.amp_hours;
    row.watt_hours = energy.watt_hours();
    row.has_resistance = log_row.has_resistance;
    row.milliohms = log_row.resistance * 1000.0;
    if (row.amp_hours < amp_hours_before)
        ++present.count.rows_out_of_order;
    amp_hours_before = row.amp_hours;
    take(row, line);
}

void SectionSink::take_other_line(const LogLine& line)
{
    Row row;
    row.line = line.number;
    if (inside && read_charge_row(line.text, generation, row))
        take(row, line);
    else if (!inside || line.text != CHARGE_TITLES)
        other_line_read(line);
}

void SectionSink::take(const Row& row, const LogLine& line)
{
    show_section();
    count_row(present.count, row);
    note_volts(present, row.volts);
    row_read(present, row, line);
}

void SectionSink::show_section()
{
    if (shown)
        return;
    shown = true;
    present.parameters = parameters;
    section_begun(present);
}

void SectionSink::end_section()
{
    if (!inside)
        return;
    show_section();
    inside = false;
    section_ended(present);
}

void SectionSink::end_log()
{
    end_section();
}
