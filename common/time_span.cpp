#include "common/time_span.h"

QString format_time_span(qint64 seconds)
{
    const qint64 days = seconds / 86400;
    const qint64 hours = seconds % 86400 / 3600;
    const qint64 minutes = seconds % 3600 / 60;
    QString text;
    if (days != 0)
        text += QString("%1d ").arg(days);
    if (days != 0 || hours != 0)
        text += QString("%1h ").arg(hours, 2, 10, QChar('0'));
    if (days != 0 || hours != 0 || minutes != 0)
        text += QString("%1m ").arg(minutes, 2, 10, QChar('0'));
    return text + QString("%1s").arg(seconds % 60, 2, 10, QChar('0'));
}
