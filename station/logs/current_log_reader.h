#pragma once

#include "station/logs/log_sink.h"

class QTextStream;

/**
 * Reads a current data log behind its first line into `sink`, whose test has no cycle yet.
 *
 * @return false at the first line that cannot be accounted for
 */
bool read_current_log(QTextStream& stream, LogSink& sink);
