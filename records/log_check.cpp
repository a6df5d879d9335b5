#include "records/log_check.h"

#include "common/time_span.h"
#include "records/charge_leg.h"
#include "records/exact_row.h"
#include "records/log_input.h"
#include "records/section_order.h"
#include "station/logs/log_reader.h"
#include "station/logs/log_text.h"

#include <QFileInfo>
#include <QTextStream>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int MOST_ROW_WARNINGS = 20;

/** The charge that began with this leg; null if the log does not have it. */
const Section* charge_of(const ChargeLeg& leg, const QList<Section>& sections)
{
    for (const Section& section : sections)
        // The event log tells the moment of the change, a head the one just before it.
        if (section.kind == SectionKind::Charge && section.start.isValid() &&
            qAbs(section.start.secsTo(leg.begin)) <= 1)
            return &section;
    return nullptr;
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

/** What could be read of a log on a failing disk says nothing of the log. */
bool was_read(const LogInput& input, LogFile& file)
{
    if (!input.failed())
        return true;
    file.accepted = false;
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
            {line.number, quoted(line.text) + " loads, but is not in the application's own form"});
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

void LogCheck::warn_of_charge_times()
{
    for (const Section& section : qAsConst(file.sections))
        if (section.parameters.max_charge_time == 0) {
            file.warnings.append({section.line, "a maximum charge time of 0: taken up again, the "
                                                "test would end each charge at once"});
            break;
        }
    for (const ChargeLeg& leg : charge_legs(file.events.changes))
        if (leg.time_ended)
            warn_of_charge(leg);
}

// Hours are logged as whole ones: a charge may take longer than its log says it may.
void LogCheck::warn_of_charge(const ChargeLeg& leg)
{
    constexpr int TOLERANCE = 60;  // seconds
    const Section* const section = charge_of(leg, file.sections);
    if (section == nullptr || section->parameters.max_charge_time == 0)
        return;
    const qint64 seconds = leg.begin.secsTo(leg.end);
    if (seconds > section->parameters.max_charge_time + TOLERANCE)
        file.warnings.append(
            {section->line, QString("a maximum charge time of %1, although this charge ended at "
                                    "its maximum after %2")
                                .arg(format_time_span(section->parameters.max_charge_time),
                                     format_time_span(seconds))});
}

void LogCheck::warn_of_an_earlier_test()
{
    for (const Section& section : qAsConst(file.sections))
        if (section_order(file.events, file.sections[0].start, section.start) ==
            SectionOrder::Earlier) {
            file.warnings.append({section.line, "this section is of an earlier test, whose log was "
                                                "written over from its start"});
            return;
        }
}

void LogCheck::warn_of_file(const LogInput& input)
{
    if (input.has_wide_characters())
        file.warnings.append({0, "in UTF-16 or UTF-32, as another program has saved it"});
    else if (input.ends_with_nul())
        file.warnings.append({0, "zeros at the end, as after a loss of power"});
    else if (!input.ends_with_line_end())
        file.warnings.append({0, "the last line has no end: cut off, or being written"});
    if (input.begins_with_byte_order_mark() && !input.has_wide_characters())
        file.warnings.append(
            {0, "a byte order mark at its beginning, as another program has saved it"});
    if (input.has_carriage_returns() && !input.has_wide_characters())
        file.warnings.append({0, "carriage returns, as Windows puts at the ends of lines"});
    if (!file.events.exists)
        file.warnings.append({0, "no event log beside it"});
    else if (!file.events.two_writers.isEmpty())
        file.warnings.append(
            {0, "by the event log two stations wrote at once: " + file.events.two_writers});
}

void LogCheck::finish_check(bool accepted, const LogInput& input)
{
    finish(accepted);
    if (inexact_rows > MOST_ROW_WARNINGS)
        file.warnings.append(
            {0, QString("%1 more such rows").arg(inexact_rows - MOST_ROW_WARNINGS)});
    warn_of_negative_resistances();
    warn_of_charge_times();
    warn_of_an_earlier_test();
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
    return was_read(input, file);
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
    return was_read(input, file);
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
