#include "records/event_log.h"

#include "common/date_time.h"
#include "common/file.h"
#include "common/parse_int.h"
#include "records/event_line.h"
#include "records/log_input.h"

#include <QTextStream>

#include <algorithm>

namespace
{
/** Lines of an event log on their way into its values. */
class EventReader
{
public:
    explicit EventReader(EventLog& filled) : log(filled)
    {
    }

    void take_line(const QString& line);

private:
    void take_change(const PhaseChange& change);
    void take_telemetry(const QString& line, const QDateTime& time);
    void accuse(const QString& what);

    EventLog& log;
    PhaseRoad road;
    int instrument = 0;  ///< of the last telemetry line
    int turns = 0;       ///< changes of the instrument since a test was started
    bool instrument_known = false;
};

void EventReader::take_line(const QString& line)
{
    const EventLine event = read_event_line(line);
    if (event.kind == EventKind::PhaseChange)
        take_change({event.time, event.phase, event.reason});
    if (event.kind == EventKind::Reset)
        log.resets << event.time;
    if (event.kind == EventKind::Telemetry)
        take_telemetry(line, event.time);
}

void EventReader::take_change(const PhaseChange& change)
{
    if (is_start_by_hand(change))
        turns = 0;
    if (!road.take(change))
        accuse(QString("'%1' at %2 belongs to a test that was under way when another was started")
                   .arg(change.phase, change.time.toString(Time::ISO_8601_DATE_TIME_FORMAT)));
    log.changes << change;
}

/** An instrument may be exchanged; that two of them take turns in one test is another thing. */
void EventReader::take_telemetry(const QString& line, const QDateTime& time)
{
    constexpr int MOST_TURNS = 20;  // noise may make a number of nothing now and then
    if (line.count('\t') != 6)
        return;
    int number = 0;
    if (!parse_int(line.section('\t', 5, 5).remove("ID="), number))
        return;
    if (instrument_known && number != instrument && ++turns > MOST_TURNS)
        accuse(QString("instruments %1 and %2 take turns at %3")
                   .arg(qMin(number, instrument))
                   .arg(qMax(number, instrument))
                   .arg(time.toString(Time::ISO_8601_DATE_TIME_FORMAT)));
    instrument = number;
    instrument_known = true;
}

void EventReader::accuse(const QString& what)
{
    if (log.two_writers.isEmpty())
        log.two_writers = what;
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

int EventLog::change_at(const QDateTime& time) const
{
    const auto found =
        std::find_if(changes.begin(), changes.end(), [&time](const PhaseChange& change) {
            return time.isValid() && qAbs(change.time.secsTo(time)) <= 1;
        });
    return found == changes.end() ? -1 : int(found - changes.begin());
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
    EventReader reader(log);
    QString line;
    while (stream.readLineInto(&line, LONGEST_LINE))
        reader.take_line(line);
    return log;
}

EventLog event_log_beside(const QString& log_path)
{
    const QString path = event_log_path(log_path);
    LogInput file;
    return !path.isEmpty() && file.open_log(path) ? read_event_log(file) : EventLog();
}
