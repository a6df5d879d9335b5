#pragma once

#include "records/phase_road.h"

class QIODevice;

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

/** What the `.txt` beside a log tells of the test; of telemetry in it only whose it is. */
struct EventLog
{
    QList<PhaseChange> changes;
    QList<QDateTime> resets;  ///< of an instrument that had fallen silent
    QString two_writers;      ///< what shows that two stations wrote at once; empty if nothing does
    bool exists = false;

    TestEnd end() const;
    /** "Done on 2020-04-03 12:00:00 because max charge time reached"; empty if unknown. */
    QString end_text() const;
    QList<HeldTime> held_times() const;
    /** The first change of this second, or of one beside it; below 0 if there is none. */
    int change_at(const QDateTime& time) const;
};

/** "a/b.c.csv" gives "a/b.c.txt"; empty if the name has no "." at all. */
QString event_log_path(const QString& log_path);

EventLog read_event_log(QIODevice& device);
/** Of the `.txt` beside a log; empty, with `exists` false, where there is none. */
EventLog event_log_beside(const QString& log_path);
