#include "common/date_time.h"

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
}  // namespace

QDateTime now()
{
    return other_clock() ? other_clock()() : QDateTime::currentDateTime();
}

void set_clock(std::function<QDateTime()> clock)
{
    other_clock() = std::move(clock);
}
}  // namespace Time
