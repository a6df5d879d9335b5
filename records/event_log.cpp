#include "records/event_log.h"

#include "common/date_time.h"
#include "common/file.h"
#include "records/event_line.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>

namespace
{
const QString USER_CLICKED = "User clicked";

/** What a phase may be followed by in one test. A start by hand may follow anything. */
struct Followers
{
    const char* phase;
    const char* next[6];
};

constexpr Followers FOLLOWERS[] = {
    {"Charging", {"Charging", "Full Charge Test", "Ready for", "Discharging"}},
    {"Full Charge Test", {"Charging", "Ready for", "Discharging"}},
    {"Ready for", {"Discharging"}},
    // A charge test that falls due on the line that ends its charge comes on top of what follows.
    {"Discharging", {"IR Test", "Charging", "Charging (final)", "Full Charge Test"}},
    {"IR Test", {"Recovering from IR Test", "Charging", "Charging (final)"}},
    {"Recovering from IR Test", {"Discharging"}},
    {"Charging (final)", {"Final Charge Test", "Done", "Charging"}},
    {"Final Charge Test", {"Charging (final)", "Done", "Charging"}},
    {"Done", {"Final Charge Test", "Charging"}},
};

/** "Ready for 2nd Discharge" is "Ready for": the number tells nothing here. */
QString plain_phase(const QString& phase)
{
    return phase.startsWith("Ready for") ? QString("Ready for") : phase;
}

bool may_follow(const QString& phase, const QString& next)
{
    for (const Followers& row : FOLLOWERS)
        if (phase == row.phase)
            return std::any_of(std::begin(row.next), std::end(row.next),
                               [&next](const char* name) { return next == name; });
    return true;  // a phase that this table does not know
}

void take_line(const QString& line, EventLog& log)
{
    const EventLine event = read_event_line(line);
    if (event.kind == EventKind::Reset)
        log.resets << event.time;
    if (event.kind == EventKind::PhaseChange)
        log.changes.append({event.time, event.phase, event.reason});
}
}  // namespace

TestEnd EventLog::end() const
{
    if (changes.isEmpty())
        return TestEnd::Unknown;
    return changes.last().phase == "Done" ? TestEnd::Done : TestEnd::Unfinished;
}

QString EventLog::end_text() const
{
    if (changes.isEmpty())
        return QString();
    const PhaseChange& last = changes.last();
    return QString("%1 on %2 because %3")
        .arg(last.phase, last.time.toString(Time::ISO_8601_DATE_TIME_FORMAT), last.reason);
}

QList<HeldTime> EventLog::held_times() const
{
    QList<HeldTime> times;
    QDateTime begin;
    for (const PhaseChange& change : changes) {
        const bool held = change.phase == "IR Test" || change.phase == "Recovering from IR Test";
        if (held && begin.isNull())
            begin = change.time;
        if (!held && !begin.isNull()) {
            times.append({begin, change.time});
            begin = QDateTime();
        }
    }
    return times;
}

const PhaseChange* EventLog::second_writer() const
{
    for (int i = 1; i < changes.size(); ++i) {
        const PhaseChange& change = changes[i];
        const bool by_hand = change.reason.startsWith(USER_CLICKED);
        if (!by_hand && !may_follow(plain_phase(changes[i - 1].phase), plain_phase(change.phase)))
            return &change;
    }
    return nullptr;
}

QString event_log_path(const QString& log_path)
{
    QString path;
    File::change_extension(log_path, ".txt", path);
    return path;
}

EventLog read_event_log(QIODevice& device)
{
    constexpr int LONGEST_LINE = 4096;
    EventLog log;
    log.exists = true;
    QTextStream stream(&device);
    QString line;
    while (stream.readLineInto(&line, LONGEST_LINE))
        take_line(line, log);
    return log;
}

EventLog event_log_beside(const QString& log_path)
{
    QFile file(event_log_path(log_path));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        return EventLog();
    return read_event_log(file);
}
