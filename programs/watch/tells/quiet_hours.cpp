#include "watch/tells/quiet_hours.h"

#include <QRegularExpression>

namespace
{
QTime time_of(const QString& hour, const QString& minute)
{
    return QTime(hour.toInt(), minute.toInt());
}
}  // namespace

bool QuietHours::hold(const QTime& time) const
{
    if (!from.isValid())
        return false;
    return from < to ? from <= time && time < to : from <= time || time < to;
}

bool read_quiet_hours(const QString& text, QuietHours& hours)
{
    static const QRegularExpression form(
        "\\A([0-9]{1,2})(?::([0-9]{2}))?-([0-9]{1,2})(?::([0-9]{2}))?\\z");
    const QRegularExpressionMatch match = form.match(text);
    const QTime from = time_of(match.captured(1), match.captured(2));
    // A day ends at 24 as well as at 0.
    const bool midnight = match.captured(3) == "24" && match.captured(4).toInt() == 0;
    const QString last = midnight ? "0" : match.captured(3);
    const QTime to = time_of(last, match.captured(4));
    if (!match.hasMatch() || !from.isValid() || !to.isValid() || from == to)
        return false;
    hours = {from, to};
    return true;
}
