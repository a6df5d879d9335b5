#include "bench_table.h"

#include "charts/closest_point.h"
#include "charts/line_chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

namespace
{
constexpr int CURVES = 50;
constexpr int POINTS = 18000;  // a discharge of five hours, one line a second
const QPoint MOUSE(700, 250);

/** How the points came into memory: the readings of ten stations in turn, or one log after another. */
enum Filling
{
    RUNNING,
    LOADED,
};

/** The curves in the layout of a chart of 1200 x 500 pixels. */
struct View
{
    explicit View(Filling filling)
    {
        place(chart.bottom_axis, 60, 1100, 20.0);
        place(chart.left_axis, 450, 400, 30.0);
        for (int i = 0; i < CURVES; ++i) {
            owned.push_back(std::make_unique<Series>());
            owned.back()->set_axes(&chart.bottom_axis, &chart.left_axis);
            series.append(owned.back().get());
        }
        const int in_turn = filling == RUNNING ? 10 : 1;
        for (int first = 0; first < CURVES; first += in_turn)
            for (int i = 0; i < POINTS; ++i)
                for (int curve = first; curve < first + in_turn; ++curve)
                    add(curve, i);
    }

    static void place(Axis& axis, int origin, int length, double end)
    {
        axis.origin = origin;
        axis.length = length;
        axis.range.min = 0.0;
        axis.range.max = end;
    }

    void add(int curve, int i)
    {
        const double volts = 25.0 - curve * 0.05 - i * 0.0002 + 0.02 * std::sin(i * 0.7 + curve);
        series[curve]->add(i * 4.0 / 3600.0, std::round(volts * 100.0) / 100.0);
        others.append(QPointF(i, 4.0));
    }

    LineChart chart;
    std::vector<std::unique_ptr<Series>> owned;
    QList<Series*> series;
    QList<QPointF> others;  ///< the currents, which come into memory between the voltages
};

/** The plainest loop: both axes in locals, every point mapped and measured. */
QPointF plainly_closest(const QList<Series*>& list, QPoint mouse)
{
    QPointF best;
    float nearest = std::numeric_limits<float>::infinity();
    for (const Series* series : list) {
        const Axis& x = *series->get_x_axis();
        const Axis& y = *series->get_y_axis();
        const double x_scale = x.scale();
        const double y_scale = y.scale();
        const double x_min = x.range.min;
        const double y_min = y.range.min;
        const int x_origin = x.origin;
        const int y_origin = y.origin;
        for (const QPointF& point : series->points) {
            const qint64 dx = int(x_scale * (point.x() - x_min) + x_origin) - mouse.x();
            const qint64 dy = int(y_scale * -(point.y() - y_min) + y_origin) - mouse.y();
            const auto distance = float(dx * dx + dy * dy);
            if (distance < nearest) {
                nearest = distance;
                best = point;
            }
        }
    }
    return best;
}

BenchRow measure_scan(const char* work, Filling filling)
{
    const View view(filling);
    if (find_closest_point(view.series, MOUSE).point != plainly_closest(view.series, MOUSE))
        std::printf("The two ways do not find the same point.\n");
    return measure(
        work, 1, 0.90, [&view] { keep(find_closest_point(view.series, MOUSE).point.x()); },
        [&view] { keep(plainly_closest(view.series, MOUSE).x()); });
}
}  // namespace

int main()
{
    const BenchRow running = measure_scan("hover scan, 900,000 points, appended in turn", RUNNING);
    const BenchRow loaded = measure_scan("hover scan, 900,000 points, loaded", LOADED);
    print_bench_table({running, loaded});
    return 0;
}
