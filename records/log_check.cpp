#include "records/log_check.h"

#include "common/time_span.h"
#include "records/exact_row.h"
#include "records/log_input.h"
#include "station/logs/log_reader.h"
#include "station/logs/log_text.h"

#include <QFileInfo>
#include <QTextStream>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int MOST_ROW_WARNINGS = 20;
const QString TIME_REACHED = "max charge time reached";

/** Seconds of the charge that this change of phase ended; -1 if there was none. */
qint64 charge_seconds(const QList<PhaseChange>& changes, int ending)
{
    qint64 begin = -1;
    for (int i = ending - 1; i >= 0; --i) {
        const QString& phase = changes[i].phase;
        if (phase != "Charging" && !phase.endsWith("Charge Test") && phase != "Charging (final)")
            break;
        begin = changes[i].time.secsTo(changes[ending].time);
        const bool start = changes[i].reason.startsWith("User clicked");
        if (start ||
            (phase == "Charging (final)" && i > 0 && changes[i - 1].phase != "Final Charge Test"))
            break;
    }
    return begin;
}

/** The longest charge that ended because its time was over; -1 if there was none. */
qint64 longest_timed_charge(const EventLog& events)
{
    qint64 longest = -1;
    for (int i = 1; i < events.changes.size(); ++i)
        if (events.changes[i].reason.startsWith(TIME_REACHED))
            longest = qMax(longest, charge_seconds(events.changes, i));
    return longest;
}

void read_into(LogInput& input, LogFile& file, LogSummary& sink, bool& accepted)
{
    QTextStream stream(&input);
    accepted = read_log(stream, sink);
    if (!input.line_too_long())
        return;
    accepted = false;
    if (file.refusal.reason.isEmpty())
        file.refusal = {1, 1, QString()};
    file.refusal.reason = "a line of more than 64 MB";
}

/** Whether this process may, as opening would show; nothing is opened. */
bool may_write(const QString& path)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), W_OK, AT_EACCESS) == 0;
}

bool open_input(LogInput& input, const QString& path, LogFile& file)
{
    file.path = path;
    file.events = event_log_beside(path);
    if (input.open_log(path))
        return true;
    file.refusal = {0, 0, input.errorString()};
    return false;
}
}  // namespace

void LogCheck::row_read(const Section& section, const Row& row, const LogLine& line)
{
    LogSummary::row_read(section, row, line);
    if (generation != LogGeneration::Current)
        return;
    const bool exact = section.kind == SectionKind::Charge ? is_exact_charge_row(line.text)
                                                           : is_exact_discharge_row(line.text);
    if (!exact)
        warn_of_row(line);
}

void LogCheck::other_line_read(const LogLine& line)
{
    if (generation == LogGeneration::Current)
        warn_of_row(line);
}

void LogCheck::warn_of_row(const LogLine& line)
{
    if (++inexact_rows <= MOST_ROW_WARNINGS)
        file.warnings.append(
            {line.number, quoted(line.text) + " loads, but the application never wrote it so"});
}

void LogCheck::warn_of_negative_resistances()
{
    for (const Cycle& cycle : qAsConst(file.cycles))
        if (cycle.negative_resistances > 0)
            file.warnings.append({file.sections[cycle.section].line,
                                  QString("negative resistances in discharge %1: %2")
                                      .arg(file.sections[cycle.section].number)
                                      .arg(cycle.negative_resistances)});
}

// Hours are logged as whole ones: a charge may take longer than its log says it may.
void LogCheck::warn_of_charge_times()
{
    constexpr int TOLERANCE = 60;  // seconds
    for (const Section& section : qAsConst(file.sections))
        if (section.parameters.max_charge_time == 0) {
            file.warnings.append({section.line, "a maximum charge time of 0: taken up again, the "
                                                "test would end each charge at once"});
            return;
        }
    const qint64 charge = longest_timed_charge(file.events);
    if (charge > file.parameters.max_charge_time + TOLERANCE)
        file.warnings.append({0, QString("a maximum charge time of %1, although a charge ended at "
                                         "its maximum after %2")
                                     .arg(format_time_span(file.parameters.max_charge_time),
                                          format_time_span(charge))});
}

void LogCheck::warn_of_file(const LogInput& input)
{
    if (input.ends_with_nul())
        file.warnings.append({0, "zeros at the end, as after a loss of power"});
    else if (!input.ends_with_line_end())
        file.warnings.append({0, "the last line has no end: cut off, or being written"});
    if (!file.events.exists)
        file.warnings.append({0, "no event log beside it"});
    else if (const PhaseChange* change = file.events.second_writer())
        file.warnings.append({0, QString("by the event log two stations wrote at once: '%1' at %2 "
                                         "fits no single test")
                                     .arg(change->phase, change->time.toString(Qt::ISODate))});
}

void LogCheck::finish_check(bool accepted, const LogInput& input)
{
    finish(accepted);
    if (inexact_rows > MOST_ROW_WARNINGS)
        file.warnings.append(
            {0, QString("%1 more such rows").arg(inexact_rows - MOST_ROW_WARNINGS)});
    warn_of_negative_resistances();
    warn_of_charge_times();
    warn_of_file(input);
}

bool check_log(const QString& path, LogFile& file)
{
    LogInput input;
    if (!open_input(input, path, file))
        return false;
    LogCheck check(file);
    bool accepted = false;
    read_into(input, file, check, accepted);
    check.finish_check(accepted, input);
    return true;
}

bool summarize_log(const QString& path, LogFile& file)
{
    LogInput input;
    if (!open_input(input, path, file))
        return false;
    LogSummary summary(file);
    bool accepted = false;
    read_into(input, file, summary, accepted);
    summary.finish(accepted);
    return true;
}

QString why_not_writable(const QString& path)
{
    if (!may_write(path))
        return "there is no permission to write it";
    const QFileInfo events(event_log_path(path));
    if (events.filePath().isEmpty())
        return "its name has no '.' for the event log's to replace";
    const bool writable = may_write(events.exists() ? events.filePath() : events.absolutePath());
    return writable ? QString() : "there is no permission to write the event log beside it";
}
