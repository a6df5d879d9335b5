#include "log/place.h"

QString place_of(const LogRefusal& refusal)
{
    return QString("line %1, column %2: ").arg(refusal.line).arg(refusal.column) + refusal.reason;
}

QString not_readable(const LogFile& file)
{
    return QString("%1 cannot be read: %2. Name a data log, or a folder with such.")
        .arg(file.path, file.refusal.reason);
}

QString gap_reason(const EventLog& events, const Section& section, const Gap& gap)
{
    if (!events.exists || !section.start.isValid())
        return "?";
    const QDateTime begin = section.start.addMSecs(qint64(gap.begin * 1000.0));
    const QDateTime end = begin.addMSecs(qint64(gap.seconds * 1000.0)).addSecs(1);
    for (const QDateTime& reset : events.resets)
        if (begin <= reset && reset <= end)
            return "silence of the instrument";
    return "sleep or stop of the program";
}
