#pragma once

#include "log/row_text.h"

#include <QDateTime>
#include <QTimeZone>

/** Moments of a log in its time zone, quickly: the zone is asked anew only where its clock may jump. */
class ZoneClock
{
public:
    explicit ZoneClock(const QTimeZone& of);

    /** Milliseconds since 1970 UTC of a local time without a zone. */
    qint64 milliseconds_of(const QDateTime& local) const;

    /** Appends "2020-04-03T10:02:45.000+02:00". */
    void append_time(RowText& text, qint64 milliseconds);

private:
    void ask_zone(qint64 milliseconds);

    QTimeZone zone;
    qint64 known_from = 1;
    qint64 known_to = 0;  ///< the next jump; nothing is known yet
    qint64 offset = 0;    ///< milliseconds
    QByteArray offset_text;
    qint64 known_day = 0;
    QByteArray day_text;
};
