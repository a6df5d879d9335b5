#include "records/running_log.h"

#include "station/logs/log_reader.h"

RunningLog::RunningLog() : pass(std::make_unique<CurrentLogPass>(*this))
{
}

RunningLog::~RunningLog() = default;

// A line that the reader refuses, as one that was cut when the power failed, is left out: what is
// still being written is told as far as it can be understood.
void RunningLog::take_line(const QByteArray& line)
{
    const QString text = QString::fromLocal8Bit(line);
    if (first_line) {
        first_line = false;
        is_current_log = log_generation(text) == LogGeneration::Current;
        begin_log(is_current_log ? LogGeneration::Current : LogGeneration::None);
    } else if (is_current_log) {
        pass->take_line(text);
    }
}

void RunningLog::section_begun(const Section& begun)
{
    section = begun;
    in_section = true;
    row = Row();
}

void RunningLog::row_read(const Section& of, const Row& read, const LogLine&)
{
    section = of;
    row = read;
    ++rows;
    if (read.has_resistance) {
        has_resistance = true;
        milliohms = read.milliohms;
    }
}

void RunningLog::section_ended(const Section& ended)
{
    // A section without a row has left none.
    const bool has_rows = ended.count.rows > 0;
    legs.append({ended.kind, ended.count.last_seconds, has_rows ? row.amp_hours : 0.0,
                 ended.last_volts, ended.parameters.low_voltage_cutoff,
                 ended.parameters.max_charge_time});
    section = ended;
}
