#pragma once

#include "support/test_road.h"

#include "station/test_station.h"

/** The resistances of the present cycle. */
inline const QList<QPointF>& points_of(const StationBench& bench)
{
    return bench.station->current_cycle->internal_resistance.points;
}

/** Load off and on again: a resistance of 100 milliohms. */
inline void complete_a_test(StationBench& bench)
{
    bench.receive("41.00", "0.0", "O");
    bench.receive("40.00", "10.0", "D");
}

inline int tests_begun(StationBench& bench)
{
    return events(bench).filter("Switching to phase IR Test").size();
}
