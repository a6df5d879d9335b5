#pragma once

#include "station/logs/log_sink.h"

class QTextStream;

/** What a log is by its first line, which is compared whole; the file's name plays no part. */
LogGeneration log_generation(const QString& first_line);

/**
 * Reads a whole data log of either generation into `sink`.
 *
 * @return false at the first line that cannot be accounted for, which `sink` is told
 */
bool read_log(QTextStream& stream, LogSink& sink);
