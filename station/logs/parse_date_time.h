#pragma once

#include <QDateTime>
#include <QString>

/**
 * Reads a local date and time. For a format that begins like "yyyy-MM-dd hh:mm:ss.zzz", the longer
 * of text and format is cut to the length of the other first: milliseconds too many do no harm.
 *
 * @return whether `date_time`, which is set in any case, is valid
 */
bool parse_date_time(QString text, QDateTime& date_time, QString format);
