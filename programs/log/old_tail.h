#pragma once

#include "log/reading.h"
#include "records/event_log.h"

#include <QByteArray>

/**
 * Looks for what an earlier log left behind a shorter one, when the file could not be removed and was
 * written over from its start.
 *
 * A head of an earlier time betrays it. The rows before that head belong to it from the place on at
 * which they do not go on: such a place follows a line that was cut, or it is a jump.
 */
class OldTail
{
public:
    explicit OldTail(const EventLog& event_log);

    void take_line(const QByteArray& line);

    /** The line with which the old log begins, counted from 1; 0 if there is none. */
    qint64 first_line() const
    {
        return found;
    }

private:
    void take_timestamp(const QByteArray& line);
    void take_row(const Reading& reading);

    const EventLog& events;
    qint64 line_number = 0;
    qint64 found = 0;
    qint64 head = 0;          ///< of the section in progress
    qint64 break_before = 0;  ///< the place in question in the section before it
    qint64 cut_at = 0;        ///< the row behind the last line in the section that makes no sense
    qint64 jump_at = 0;       ///< the last row in the section that does not go on
    bool cut = false;         ///< the line before made no sense
    Reading last;
    QDateTime first_start;
};
