#pragma once

#include "records/event_line.h"

/** A change of phase, and when the watch came to know of it. */
struct StoryPhase
{
    TestPhase phase = TestPhase::Unknown;
    QString text;  ///< "Ready for 2nd Discharge"
    QString reason;
    QDateTime time;         ///< as the event log has it: local time without a zone
    qint64 arrival_ms = 0;  ///< by a clock that never steps
    QDateTime since;        ///< UTC, as far as whoever reads the log knows
};

/**
 * What the event log has told of a test so far; it does not grow with the log.
 *
 * All arrivals are of one clock that never steps and stands still while the machine sleeps: a look at
 * the file gives it for all lines that it finds.
 */
class TestStory
{
public:
    void take(const EventLine& line, qint64 arrival_ms, const QDateTime& since = QDateTime());

    /**
     * The phase that counts: the last one that has stood for 3 seconds, as a charge may pass through
     * Done on a single line of the instrument; the first one at once.
     */
    const StoryPhase& phase(qint64 now_ms) const;
    /** The last one, whether it counts or not. */
    const StoryPhase& last_phase() const;

    bool empty = true;      ///< no phase was told yet
    int botched_tests = 0;  ///< in a row
    int discharges = 0;     ///< begun
    int resets = 0;         ///< in a row, with no sign of life in between
    qint64 reset_ms = 0;    ///< arrival of the last of them
    qint64 first_reset_ms = 0;
    qint64 telemetry_ms = 0;  ///< arrival of the last telemetry line
    bool has_telemetry = false;

    /** A row has come, or something else that shows the instrument to be alive. */
    void end_silence();

private:
    void take_change(const EventLine& line, qint64 arrival_ms, const QDateTime& since);
    void settle(const QDateTime& later);

    StoryPhase last;
    StoryPhase settled;
    bool last_stood = false;
};
