#pragma once

#include "support/read_log.h"

/**
 * Reads a log the plainest way, line by line and field by field, whatever it costs.
 *
 * The readers of the product are compared with it on logs that nobody has thought of.
 */
void read_literally(const QByteArray& bytes, ReadLog& log);
