#pragma once

#include "records/log_summary.h"

class LogInput;
struct ChargeLeg;

/** As a LogSummary, and what is odd about a log that loads all the same. */
class LogCheck : public LogSummary
{
public:
    using LogSummary::LogSummary;

    /** To be called instead of finish. */
    void finish_check(bool accepted, const LogInput& input);

protected:
    void row_read(const Section& section, const Row& row, const LogLine& line) override;
    void other_line_read(const LogLine& line) override;

private:
    void warn_of_row(const LogLine& line);
    void warn_of_negative_resistances();
    void warn_of_charge_times();
    void warn_of_charge(const ChargeLeg& leg);
    void warn_of_an_earlier_test();
    void warn_of_file(const LogInput& input);

    qint64 inexact_rows = 0;
};

/** Reads and checks the log at `path`. False, with a refusal that says why, if it cannot be read. */
bool check_log(const QString& path, LogFile& file);

/** As check_log, without a look at the form of each row. */
bool summarize_log(const QString& path, LogFile& file);

/**
 * Why the application could not open the log for writing, as it does before it reads it; empty if it
 * could.
 */
QString why_not_writable(const QString& path);
