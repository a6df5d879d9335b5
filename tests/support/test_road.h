#pragma once

#include "support/station_bench.h"

#include <QStringList>

class TestCycle;

/**
 * Takes the fresh bench's test to `phase` by the lines and clicks that lead there, through as many
 * whole discharges before; the operator skips where that is the shorter way.
 *
 * The number of cycles is then one more than `discharges_before`: a discharge reached is the last.
 * Flags that the road needs are set as it needs them, and stay so.
 */
void bring_to(StationBench& bench, Phase phase, int discharges_before = 0);

/** The data of a test for each phase: the column "phase" with its number. */
void add_all_phases();

/** A further cycle, as if its discharge had just begun: the station's current one. */
TestCycle* add_cycle(TestStation& station);

/** "123 mΩ" with the ohm sign, and not the capital omega that looks like it. */
QString in_milliohms(const char* number);

/** The texts of the event log, without the time stamps. */
QStringList events(StationBench& bench);

/** The lines of the data log behind the last column titles. */
QStringList last_rows(StationBench& bench);
