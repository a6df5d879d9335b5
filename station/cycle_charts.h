#pragma once

#include "charts/chart_kinds.h"
#include "charts/line_chart.h"

#include <iterator>

class QColor;
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

/** All curves of the cycle are drawn in this colour from now on. */
void set_curve_color(TestCycle& cycle, const QColor& color);

/** Each curve of the cycle is drawn along the axes of its chart. */
void set_curve_axes(TestCycle& cycle);
