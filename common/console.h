#pragma once

#include <QString>

/** Writes `text` to standard output as it stands and flushes it, so that a pipe sees each line at once. */
void print_to_console(const QString& text);
