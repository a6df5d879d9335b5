#pragma once

#include "watch/watch_options.h"

/** Looks every few seconds until a signal ends the program. The program's exit code. */
int follow(const WatchOptions& options);
