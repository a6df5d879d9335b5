#include "guard/guard_clock.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace
{
double milliseconds_since_boot()
{
    timespec now = {};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return double(now.tv_sec) * 1000.0 + double(now.tv_nsec) / 1e6;
}
}  // namespace

GuardClock::GuardClock(double speed_factor) : speed(speed_factor)
{
}

qint64 GuardClock::now_ms() const
{
    return std::llround(milliseconds_since_boot() * speed);
}

qint64 GuardClock::real_now_ms() const
{
    return std::llround(milliseconds_since_boot());
}

int GuardClock::real_ms(int ms, int least) const
{
    return std::max(least, int(std::lround(ms / std::max(speed, 1.0))));
}
