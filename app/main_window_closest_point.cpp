#include "app/main_window.h"

#include "charts/closest_point.h"
#include "charts/paint_box.h"
#include "station/cycle_charts.h"
#include "station/test_station.h"

#include <QCursor>
#include <QPainter>

#include <algorithm>

namespace
{
constexpr int DOT_RADIUS = 3;

bool owns(const TestCycle& cycle, const Series* series)
{
    return std::any_of(
        std::begin(CYCLE_CHARTS), std::end(CYCLE_CHARTS),
        [&cycle, series](const CycleChart& row) { return &(cycle.*row.curve) == series; });
}

const TestStation* owner_of(const Series* series)
{
    for (const TestStation* station : qAsConst(TestStation::all_instances))
        for (const TestCycle* cycle : station->cycles)
            if (owns(*cycle, series))
                return station;
    return nullptr;
}
}  // namespace

// Drawn by the painter of the paint event: the toolkit refuses a second one on the same widget.
void MainWindow::plot_closest_chart_point(const QList<Series*>& series, char chart_type,
                                          PaintBox* box, LineChart*, QPainter* painter)
{
    const QPoint mouse = box->mapFromGlobal(QCursor::pos());
    if (!QRect(QPoint(0, 0), box->size()).contains(mouse))
        return;
    const ClosestPoint closest = find_closest_point(series, mouse);
    if (closest.series == nullptr) {
        box->setToolTip(QString());
        return;
    }
    painter->setPen(closest.series->pen);
    plot_dot(painter, closest.pixel, DOT_RADIUS);
    if (const TestStation* station = owner_of(closest.series))
        box->setToolTip(QString("%1\n%5\n%2 Ah, %3 %4")
                            .arg(closest.series->name)
                            .arg(closest.point.x())
                            .arg(closest.point.y())
                            .arg(chart_kind(chart_type).unit, station->serial_number_label.text()));
}
