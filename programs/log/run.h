#pragma once

#include "programs/common/exit_code.h"

struct Options;

/** Does the work on all logs, several at a time, and tells of them in the order of the command line. */
ExitCode run(const Options& options);
