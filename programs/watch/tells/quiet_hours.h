#pragma once

#include <QString>
#include <QTime>

/** A part of each day, by local time; "22-6" goes over midnight. */
struct QuietHours
{
    bool hold(const QTime& time) const;

    QTime from;  ///< both invalid if there are none
    QTime to;    ///< no longer quiet
};

/** Reads "22-6" and "21:30-6". False without touching `hours` if it is neither. */
bool read_quiet_hours(const QString& text, QuietHours& hours);
