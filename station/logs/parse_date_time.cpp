#include "station/logs/parse_date_time.h"

#include "common/date_time.h"

bool parse_date_time(QString text, QDateTime& date_time, QString format)
{
    if (Time::ISO_8601_DATE_TIME_FORMAT_MS.startsWith(format)) {
        const int length = qMin(text.size(), format.size());
        text.truncate(length);
        format.truncate(length);
    }
    date_time = QDateTime::fromString(text, format);
    return date_time.isValid();
}
