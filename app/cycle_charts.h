#pragma once

#include "charts/chart_kinds.h"
#include "charts/line_chart.h"

#include <iterator>

class TestCycle;

/** Ties a kind of chart to the one chart of it that there is, and to the curve of each discharge. */
struct CycleChart
{
    char code;  ///< of the kind
    LineChart& chart;
    Series TestCycle::*curve;
};

extern const CycleChart CYCLE_CHARTS[std::size(CHART_KINDS)];

/** The row of a code; the last one for a code that nobody has. */
const CycleChart& cycle_chart(char code);
