#pragma once

#include "log/outcome.h"

/**
 * What is known of a log.
 *
 * @param widest_name 0 for all of it; otherwise a line of the table of several logs, with names so wide
 */
Outcome info_of(const QString& path, int widest_name);

/** The titles over the lines of several logs. */
QString info_titles(int widest_name);
