#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

/** The formats of every date and time that is written or read, all local time, and the clock. */
namespace Time
{
extern const QString ISO_8601_DATE_TIME_FORMAT_MS;  ///< "yyyy-MM-dd hh:mm:ss.zzz"
extern const QString ISO_8601_DATE_TIME_FORMAT;     ///< "yyyy-MM-dd hh:mm:ss"
extern const QString ISO_8601_DATE_FORMAT;          ///< "yyyy-MM-dd"
extern const QString ISO_8601_TIME_FORMAT_MS;       ///< "hh:mm:ss.zzz"
extern const QString ISO_8601_TIME_FORMAT;          ///< "hh:mm:ss"

/** The present local time. Everything that asks for the time asks here. */
QDateTime now();

/**
 * The local time of a moment, given in milliseconds since 1970 UTC.
 *
 * It carries its distance from UTC with it: what lies between two such times is a subtraction, where
 * the toolkit's plain local times have the zone looked up anew at every use.
 */
QDateTime local_time(qint64 milliseconds);

/** Puts another clock behind now(), for tests and time lapse; an empty function restores the real one. */
void set_clock(std::function<QDateTime()> clock);
}  // namespace Time
