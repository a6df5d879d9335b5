#include "records/section_order.h"

SectionOrder section_order(const EventLog& events, const QDateTime& first, const QDateTime& time)
{
    constexpr qint64 DAY = 86400;  // seconds
    if (!first.isValid() || !time.isValid() || time >= first)
        return SectionOrder::Later;
    const int first_change = events.change_at(first);
    const int change = events.change_at(time);
    if (first_change >= 0 && change >= 0)
        return change < first_change ? SectionOrder::Earlier : SectionOrder::Later;
    return time.secsTo(first) > DAY ? SectionOrder::Earlier : SectionOrder::Doubtful;
}
