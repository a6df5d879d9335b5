#include "log/old_tail.h"

#include "common/date_time.h"
#include "log/log_line.h"
#include "records/section_order.h"

OldTail::OldTail(const EventLog& event_log) : events(event_log)
{
}

void OldTail::take_line(const QByteArray& line)
{
    ++line_number;
    if (found > 0)
        return;
    const QByteArray key = key_of(line);
    switch (form_of(line)) {
    case Form::Charge:
        take_row(charge_reading(line));
        break;
    case Form::Discharge:
        take_row(discharge_reading(line));
        break;
    case Form::Other:
        if (key == CHARGE_NUMBER || key == DISCHARGE_NUMBER) {
            head = line_number;
            break_before = cut_at > 0 ? cut_at : jump_at;
            cut_at = jump_at = 0;
            cut = false;
            last = Reading();
        } else if (key == TIMESTAMP) {
            take_timestamp(line);
        } else {
            cut = last.known;
        }
        break;
    }
}

void OldTail::take_row(const Reading& reading)
{
    if (cut)
        cut_at = line_number;
    cut = false;
    if (last.known && (reading.seconds < last.seconds || !continues(last, reading)))
        jump_at = line_number;
    last = reading;
}

void OldTail::take_timestamp(const QByteArray& line)
{
    const QString text = text_of(line.mid(line.indexOf(':') + 1).left(LONGEST_ROW));
    const QDateTime time = QDateTime::fromString(text.trimmed(), Time::ISO_8601_DATE_TIME_FORMAT);
    if (!first_start.isValid()) {
        first_start = time;
        return;
    }
    const SectionOrder order = section_order(events, first_start, time);
    const bool earlier =
        order == SectionOrder::Earlier || (order == SectionOrder::Doubtful && break_before > 0);
    if (earlier && head > 0)
        found = break_before > 0 ? break_before : head;
}
