#pragma once

#include "records/log_file.h"

/** "line 12, column 5: 'x' is no number" */
QString place_of(const LogRefusal& refusal);

/** A sentence about a log that could not even be read. */
QString not_readable(const QString& path, const QString& reason);

/** "silence of the instrument" if it was reset meanwhile, another if it was not; empty if unknown. */
QString gap_reason(const EventLog& events, const Section& section, const Gap& gap);
