#pragma once

#include <QString>

/** A duration in words: 9 gives "09s", 309 "05m 09s", 11109 "03h 05m 09s", 86400 "1d 00h 00m 00s". */
QString format_time_span(qint64 seconds);
