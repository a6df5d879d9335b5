#include "log/zone_clock.h"

namespace
{
constexpr qint64 DAY = 86400000;
constexpr qint64 HALF_A_YEAR = 180 * DAY;

void put_two(char* at, int number)
{
    at[0] = char('0' + number / 10);
    at[1] = char('0' + number % 10);
}

QByteArray two_digits(int number)
{
    char digits[2];
    put_two(digits, number);
    return QByteArray(digits, 2);
}

qint64 floored(qint64 milliseconds, qint64 unit)
{
    return milliseconds / unit - (milliseconds % unit < 0 ? 1 : 0);
}
}  // namespace

ZoneClock::ZoneClock(const QTimeZone& of) : zone(of)
{
}

qint64 ZoneClock::milliseconds_of(const QDateTime& local) const
{
    return QDateTime(local.date(), local.time(), zone).toMSecsSinceEpoch();
}

void ZoneClock::ask_zone(qint64 milliseconds)
{
    const QDateTime moment = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
    const QTimeZone::OffsetData next = zone.nextTransition(moment);
    known_from = milliseconds;
    known_to = next.atUtc.isValid() ? next.atUtc.toMSecsSinceEpoch() : milliseconds + HALF_A_YEAR;
    const int seconds = zone.offsetFromUtc(moment);
    offset = seconds * qint64(1000);
    const int minutes = qAbs(seconds) / 60;
    offset_text = seconds < 0 ? "-" : "+";
    offset_text += two_digits(minutes / 60) + ':' + two_digits(minutes % 60);
    known_day = 0;
    day_text.clear();
}

void ZoneClock::append_time(RowText& text, qint64 milliseconds)
{
    if (milliseconds < known_from || milliseconds >= known_to)
        ask_zone(milliseconds);
    const qint64 local = milliseconds + offset;
    const qint64 day = floored(local, DAY);
    if (day != known_day || day_text.isEmpty()) {
        known_day = day;
        day_text = QDate(1970, 1, 1).addDays(day).toString(Qt::ISODate).toLatin1() + 'T';
    }
    const int in_day = int(local - day * DAY);
    char clock[] = "00:00:00.000";
    put_two(clock, in_day / 3600000);
    put_two(clock + 3, in_day / 60000 % 60);
    put_two(clock + 6, in_day / 1000 % 60);
    clock[9] = char('0' + in_day % 1000 / 100);
    put_two(clock + 10, in_day % 100);
    text.add(day_text);
    text.add(clock, int(sizeof clock) - 1);
    text.add(offset_text);
}
