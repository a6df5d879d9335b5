#include "station/cycle_charts.h"

#include "station/test_cycle.h"
#include "station/test_station.h"

#include <QColor>
#include <QPen>

#include <algorithm>

const CycleChart CYCLE_CHARTS[] = {
    {'V', TestStation::voltage_vs_amphours_chart, &TestCycle::voltage_vs_amphours},
    {'I', TestStation::current_vs_amphours_chart, &TestCycle::current_vs_amphours},
    {'R', TestStation::internal_resistance_chart, &TestCycle::internal_resistance},
};

const CycleChart& cycle_chart(char code)
{
    return *std::find_if(std::begin(CYCLE_CHARTS), std::end(CYCLE_CHARTS) - 1,
                         [code](const CycleChart& row) { return row.code == code; });
}

void set_curve_color(TestCycle& cycle, const QColor& color)
{
    for (const CycleChart& row : CYCLE_CHARTS)
        (cycle.*row.curve).pen = QPen(color);
}

void set_curve_axes(TestCycle& cycle)
{
    for (const CycleChart& row : CYCLE_CHARTS)
        (cycle.*row.curve).set_axes(&row.chart.bottom_axis, &row.chart.left_axis);
}
