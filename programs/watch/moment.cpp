#include "watch/moment.h"

#include <ctime>

namespace
{
qint64 milliseconds_of(clockid_t clock)
{
    timespec time = {};
    ::clock_gettime(clock, &time);
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}
}  // namespace

Moment present_moment()
{
    Moment moment;
    moment.time = QDateTime::fromMSecsSinceEpoch(milliseconds_of(CLOCK_REALTIME), Qt::UTC);
    moment.awake_ms = milliseconds_of(CLOCK_MONOTONIC);
    moment.passed_ms = milliseconds_of(CLOCK_BOOTTIME);
    return moment;
}
