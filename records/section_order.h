#pragma once

#include "records/event_log.h"

/** How a section stands to the first one of its file. */
enum class SectionOrder
{
    Later,
    Earlier,  ///< of an earlier test, whose log was written over from its start
    Doubtful  ///< by its time it is earlier, but the clock may have been set back
};

/**
 * By the event log, which is only added to; where that knows nothing of the two, by their times: more than
 * a day is no clock that was set.
 */
SectionOrder section_order(const EventLog& events, const QDateTime& first, const QDateTime& time);
