#include "common/date_time.h"

#include <limits>

namespace Time
{
const QString ISO_8601_DATE_TIME_FORMAT_MS = "yyyy-MM-dd hh:mm:ss.zzz";
const QString ISO_8601_DATE_TIME_FORMAT = "yyyy-MM-dd hh:mm:ss";
const QString ISO_8601_DATE_FORMAT = "yyyy-MM-dd";
const QString ISO_8601_TIME_FORMAT_MS = "hh:mm:ss.zzz";
const QString ISO_8601_TIME_FORMAT = "hh:mm:ss";

namespace
{
std::function<QDateTime()>& other_clock()
{
    static std::function<QDateTime()> clock;
    return clock;
}

/** Seconds east of UTC. The zone is asked once a second: only between seconds does its clock jump. */
int offset_at(qint64 milliseconds)
{
    static qint64 known_second = std::numeric_limits<qint64>::min();
    static int known_offset = 0;
    const qint64 second = milliseconds / 1000;
    if (second != known_second) {
        known_offset = QDateTime::fromMSecsSinceEpoch(milliseconds).offsetFromUtc();
        known_second = second;
    }
    return known_offset;
}
}  // namespace

QDateTime now()
{
    return other_clock() ? other_clock()() : local_time(QDateTime::currentMSecsSinceEpoch());
}

QDateTime local_time(qint64 milliseconds)
{
    return QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::OffsetFromUTC, offset_at(milliseconds));
}

void set_clock(std::function<QDateTime()> clock)
{
    other_clock() = std::move(clock);
}
}  // namespace Time
