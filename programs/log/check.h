#pragma once

#include "log/outcome.h"

/** Whether the application would load a log, and what is odd about it. */
Outcome check_of(const QString& path);
