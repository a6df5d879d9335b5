#include "support/test_clock.h"

#include "common/date_time.h"

#include <cmath>

TestClock::TestClock(const QDateTime& start) : now(start)
{
    Time::set_clock([this] { return now; });
}

TestClock::~TestClock()
{
    Time::set_clock(nullptr);
}

void TestClock::advance_seconds(double seconds)
{
    now = now.addMSecs(std::llround(seconds * 1000.0));
}
