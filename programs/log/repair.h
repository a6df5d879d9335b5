#pragma once

#include "log/outcome.h"

struct Options;

/** Makes a mended copy of a log beside it, and tells what was left out; the log itself stays. */
Outcome repair_of(const QString& path, const Options& options);
