#pragma once

#include <QString>

/**
 * Reports a programming error on standard output.
 *
 * With `fatal` it waits for a line on standard input and ends the process with status 1.
 */
void assert_fatal(bool condition, QString text, bool fatal);
