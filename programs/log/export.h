#pragma once

#include "log/outcome.h"

struct Options;

/** Brings a log into another form, beside it or in the folder of the options. */
Outcome export_of(const QString& path, const Options& options);
