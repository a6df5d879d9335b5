#pragma once

#include "records/clock_steps.h"
#include "records/log_file.h"
#include "records/section_sink.h"

/** Gathers what a log holds into a LogFile. */
class LogSummary : public SectionSink
{
public:
    /** `file` has its path and its event log already. */
    explicit LogSummary(LogFile& filled);

    /** To be called behind the reader with its answer. */
    void finish(bool accepted);

    void refuse(const LogRefusal& refusal) override;

protected:
    void section_begun(const Section& section) override;
    void row_read(const Section& section, const Row& row, const LogLine& line) override;
    void section_ended(const Section& section) override;

    LogFile& file;

private:
    bool in_held_time(const Section& section, double seconds);
    void add_held(const Section& section, const Row& row);

    Cycle made;  ///< the one in the making
    ClockSteps clock_steps;
    QList<HeldTime> held_times;
    int next_held_time = 0;
    Row before;  ///< of the same discharge
    bool has_before = false;
};
