#pragma once

#include "device/kestrometer_state.h"

#include <QString>

/**
 * Reads the seven tab-separated fields of a telemetry line, "x\t48.02\t-3.1\tx\tx\tID=7\tC".
 *
 * The fields are read in the order of the arguments, and the first one that fails ends the reading:
 * what lies behind it keeps its value. A voltage or current that fails is 0 afterwards (or infinite,
 * beyond the range of double); a number in the ID field counts even if it exceeds 32 bits.
 *
 * @return whether the line is valid; only then `reported_state` is set
 */
bool read_telemetry_line(const QString& line, double& voltage, double& current, int& id,
                         KestrometerState& reported_state);
