#include "log/place.h"

#include <algorithm>

QString place_of(const LogRefusal& refusal)
{
    return QString("line %1, column %2: ").arg(refusal.line).arg(refusal.column) + refusal.reason;
}

QString not_readable(const QString& path, const QString& reason)
{
    return QString("%1 cannot be read: %2. Name a data log, or a folder with such.")
        .arg(path, reason);
}

QString gap_reason(const EventLog& events, const Section& section, const Gap& gap)
{
    if (!events.exists || !section.start.isValid())
        return QString();
    const QDateTime begin = section.start.addMSecs(qint64(gap.begin * 1000.0));
    const QDateTime end = begin.addMSecs(qint64(gap.seconds * 1000.0)).addSecs(1);
    const auto in_gap = [&](const QDateTime& reset) {
        return begin <= reset && reset <= end;
    };
    const auto resets = std::count_if(events.resets.begin(), events.resets.end(), in_gap);
    // One every five seconds while the program waits for a line; a single one may as well come when
    // it looks at a clock that was set, or when it wakes.
    const bool waited = double(resets) * 10.0 >= gap.seconds;
    return waited ? "silence of the instrument" : "sleep or stop of the program, or a clock set on";
}
