#include "watch/watched_log.h"

#include "common/time_span.h"

namespace
{
constexpr qint64 NO_ROW = -1;

QString span(double seconds)
{
    return format_time_span(qint64(seconds));
}

/** A sentence of figures for what is wrong; empty for what a test does. */
QString detail_of(Condition condition, const TestView& view)
{
    switch (condition) {
    case Condition::InstrumentSilent:
        return view.resets > 0 ? QString("No row for %1; it was reset %2 times without an answer.")
                                     .arg(span(view.row_seconds))
                                     .arg(view.resets)
                               : QString("No row for %1.").arg(span(view.row_seconds));
    case Condition::NoCurrent:
        return QString("No row for %1: no current flows, or no line can be read.")
            .arg(span(view.row_seconds));
    case Condition::StepDoesNotEnd:
        return QString("It has lasted %1.").arg(span(view.phase_seconds));
    case Condition::ResistanceTestsFail:
        return QString("%1 in a row gave a negative resistance.").arg(view.botched_tests);
    case Condition::Ended:
        if (view.writer == Writer::Gone)
            return "The program was closed.";
        return view.phase == TestPhase::Done
                   ? QString()
                   : "The program has closed the log, or it was moved away.";
    case Condition::PerhapsEnded:
        return QString("Nothing was written for %1, and the system does not tell who writes here.")
            .arg(span(view.line_seconds));
    default:
        return QString();
    }
}

/** The discharges begun, and in a charge that another one follows the next. */
int cycle_of(const RunningLog& log, TestPhase phase)
{
    if (!log.in_section)
        return 0;
    const bool goes_on = phase != TestPhase::FinalCharge && phase != TestPhase::FinalChargeTest &&
                         phase != TestPhase::Done;
    return log.section.kind == SectionKind::Charge && !goes_on ? log.section.number - 1
                                                               : log.section.number;
}
}  // namespace

TestFacts WatchedLog::facts(const Moment& moment) const
{
    const StoryPhase& present = phase(moment);
    TestFacts facts;
    facts.battery = log->profile_name;
    facts.serial_number = log->serial_number;
    facts.phase = present.text;
    facts.reason = present.reason;
    facts.cycle = cycle_of(*log, present.phase);
    facts.row_age = log->rows == 0 ? NO_ROW : (moment.awake_ms - row_ms) / 1000;
    if (log->has_resistance)
        facts.milliohms = log->milliohms;
    if (log->rows == 0)
        return facts;
    facts.volts = log->row.volts;
    if (log->section.kind == SectionKind::Discharge) {
        facts.amps = log->row.amps;
        facts.amp_hours = log->row.amp_hours;
    }
    return facts;
}

QDateTime WatchedLog::since(Condition condition, const TestView& seen, const Moment& moment)
{
    const bool by_phase = condition == traits_of(seen.phase).condition;
    if (by_phase && phase(moment).since.isValid())
        return phase(moment).since;
    if (is_over() && ended.isValid())
        return ended;
    const bool by_rows =
        condition == Condition::InstrumentSilent || condition == Condition::NoCurrent;
    const QDateTime first =
        by_rows ? moment.time.addMSecs(-qint64(seen.row_seconds * 1000.0)) : moment.time;
    return since_when.value(condition, first);
}

QList<Situation> WatchedLog::situations(const Moment& moment, int quiet_seconds)
{
    QMap<Condition, QDateTime> lasting;
    QList<Situation> found;
    if (!log->is_current_log)
        return found;
    const TestView seen = view(moment);
    for (const Condition condition : conditions_of(seen, quiet_seconds)) {
        Situation situation;
        situation.log = path;
        situation.condition = condition;
        situation.since = since(condition, seen, moment);
        situation.facts = facts(moment);
        situation.detail = detail_of(condition, seen);
        lasting.insert(condition, situation.since);
        found << situation;
    }
    since_when = lasting;
    return found;
}
