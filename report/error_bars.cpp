#include "report/error_bars.h"

#include "charts/series.h"

#include <algorithm>

namespace
{
constexpr double MILLIOHMS_AT_ONE_AMP = 150.0;

/** Calls `visit` with each reading that has a current, and its uncertainty in milliohms. */
template <typename Visit> void for_each_bar(const QList<ResistanceReadings>& cycles, Visit visit)
{
    for (const ResistanceReadings& cycle : cycles) {
        for (const QPointF& reading : cycle.resistance->points) {
            const int found = cycle.current->binary_search(reading.x());
            if (found >= 0)
                visit(reading, MILLIOHMS_AT_ONE_AMP / cycle.current->points.at(found).y());
        }
    }
}
}  // namespace

double highest_error_bar_end(const QList<ResistanceReadings>& cycles)
{
    double highest = 0.0;
    for_each_bar(cycles, [&highest](const QPointF& reading, double uncertainty) {
        highest = std::max(highest, reading.y() + uncertainty);
    });
    return highest;
}

QList<QLine> error_bars(const QList<ResistanceReadings>& cycles, const Axis& x_axis,
                        const Axis& y_axis)
{
    QList<QLine> lines;
    for_each_bar(cycles, [&](const QPointF& reading, double uncertainty) {
        const int x = x_axis.map_value(reading.x());
        lines.append(QLine(x, y_axis.map_value(reading.y() + uncertainty), x,
                           y_axis.map_value(reading.y() - uncertainty)));
    });
    return lines;
}
