#pragma once

#include "station/logs/log_sink.h"

class QTextStream;

/**
 * Reads a data log of the older, tab-separated generation behind its first line into `sink`, whose
 * test has no cycle yet. What that generation does not know keeps its value.
 *
 * @return false at the first line that cannot be accounted for
 */
bool read_older_log(QTextStream& stream, LogSink& sink);
