#pragma once

#include "records/event_log.h"
#include "records/row.h"
#include "records/section.h"

/**
 * Finds where the clock was set, as far as the log and its event log tell.
 *
 * Rows count seconds from the head of their section, whatever is done to the time zone; heads and
 * events bear the local time of their moment. Where the two part by quarters of an hour, the zone was
 * changed, by hand or as summer time begins. A clock set back shows in a row or a head that is earlier
 * than the row before; set on, it leaves a gap like any other.
 */
class ClockSteps
{
public:
    /** `log` has to outlive this. */
    explicit ClockSteps(const EventLog& log);

    void begin_section(const Section& section);
    /** A row with a resistance: the event log tells of the same moment. */
    void take_resistance(const Section& section, const Row& row);
    /** Adds what was found to the section. */
    void end_section(Section& section);

private:
    double step_before(const Section& section) const;

    const EventLog& events;
    int next_change = -1;    ///< the first in question for a resistance; below 0 for none
    double ahead = 0.0;      ///< of the events against the rows of the section, in seconds
    QList<ClockStep> found;  ///< in the section
    Section previous;
    bool has_previous = false;
};
