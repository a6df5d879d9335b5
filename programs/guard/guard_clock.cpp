#include "guard/guard_clock.h"

#include <algorithm>
#include <cmath>
#include <ctime>

GuardClock::GuardClock(double speed_factor) : speed(speed_factor)
{
}

qint64 GuardClock::now_ms() const
{
    timespec now = {};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return std::llround((double(now.tv_sec) * 1000.0 + double(now.tv_nsec) / 1e6) * speed);
}

int GuardClock::real_ms(int ms, int least) const
{
    return std::max(least, int(std::lround(ms / std::max(speed, 1.0))));
}
