#include "log/zone_clock.h"

namespace
{
constexpr qint64 DAY = 86400000;
constexpr qint64 HALF_A_YEAR = 180 * DAY;

void append_two(QByteArray& text, qint64 number)
{
    text += char('0' + number / 10);
    text += char('0' + number % 10);
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
    append_two(offset_text, minutes / 60);
    offset_text += ':';
    append_two(offset_text, minutes % 60);
    known_day = 0;
    day_text.clear();
}

void ZoneClock::append_time(QByteArray& text, qint64 milliseconds)
{
    if (milliseconds < known_from || milliseconds >= known_to)
        ask_zone(milliseconds);
    const qint64 local = milliseconds + offset;
    const qint64 day = floored(local, DAY);
    if (day != known_day || day_text.isEmpty()) {
        known_day = day;
        day_text = QDate(1970, 1, 1).addDays(day).toString(Qt::ISODate).toLatin1() + 'T';
    }
    const qint64 in_day = local - day * DAY;
    text += day_text;
    append_two(text, in_day / 3600000);
    text += ':';
    append_two(text, in_day / 60000 % 60);
    text += ':';
    append_two(text, in_day / 1000 % 60);
    text += '.';
    text += char('0' + in_day % 1000 / 100);
    append_two(text, in_day % 100);
    text += offset_text;
}
