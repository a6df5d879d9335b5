#pragma once

#include "watch/watch_options.h"

/** Prints what one look finds. The program's exit code. */
int look_once(const WatchOptions& options);
