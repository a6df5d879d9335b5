#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

class QIODevice;

/** A change of phase as the event log tells it. */
struct PhaseChange
{
    QDateTime time;  ///< local time without a zone, whole seconds
    QString phase;   ///< "Discharging"
    QString reason;
};

/** From the line that began a resistance test to the one that ended its recovery. */
struct HeldTime
{
    QDateTime begin;
    QDateTime end;
};

/** How a test stands at the end of its event log. */
enum class TestEnd
{
    Unknown,    ///< no event log, or none with a phase
    Done,       ///< it went through to its end
    Unfinished  ///< it was still at something
};

/** What the `.txt` beside a log tells of the test; telemetry lines in it are passed over. */
struct EventLog
{
    QList<PhaseChange> changes;
    QList<QDateTime> resets;  ///< of an instrument that had fallen silent
    bool exists = false;

    TestEnd end() const;
    /** "Done on 2020-04-03 12:00:00 because max charge time reached"; empty if unknown. */
    QString end_text() const;
    QList<HeldTime> held_times() const;
    /**
     * Whether changes occur that no single test makes: two stations wrote at once.
     *
     * @return the first such change; null if there is none
     */
    const PhaseChange* second_writer() const;
};

/** "a/b.c.csv" gives "a/b.c.txt"; empty if the name has no "." at all. */
QString event_log_path(const QString& log_path);

EventLog read_event_log(QIODevice& device);
/** Of the `.txt` beside a log; empty, with `exists` false, where there is none. */
EventLog event_log_beside(const QString& log_path);
