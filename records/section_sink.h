#pragma once

#include "records/live_energy.h"
#include "records/row.h"
#include "records/section.h"

/**
 * A log as sections and rows in place of lines, one at a time: what is kept does not grow with the log.
 *
 * A section is told when its head is complete, which is at its first row or at its end.
 */
class SectionSink : public LogSink
{
public:
    void begin_log(LogGeneration log_generation) override;
    void begin_charge(const LogLine& line) final;
    void begin_discharge(const LogLine& line) final;
    void end_test(const LogLine& line) final;
    void take_charge_start(const QDateTime& start) final;
    void take_discharge_start(const QDateTime& start) final;
    void take_row(const LogRow& row, const LogLine& line) final;
    void take_other_line(const LogLine& line) final;

    /** To be called behind the reader: ends the last section. */
    void end_log();

    LogGeneration generation = LogGeneration::None;

protected:
    virtual void section_begun(const Section&)
    {
    }
    virtual void row_read(const Section&, const Row&, const LogLine&)
    {
    }
    /** A line in a charge that is neither titles nor two numbers, or one outside of any section. */
    virtual void other_line_read(const LogLine&)
    {
    }
    virtual void section_ended(const Section&)
    {
    }

    LiveEnergy energy;               ///< of the discharge
    double watt_hours_loaded = 0.0;  ///< of the discharge, as a reader adds them up

private:
    void begin(SectionKind kind, const LogLine& line);
    void end_section();
    void show_section();
    void take(const Row& row, const LogLine& line);

    Section present;
    bool inside = false;  ///< of a section
    bool shown = false;   ///< the section has been told
    int discharges = 0;
    double amp_hours_before = 0.0;
};
