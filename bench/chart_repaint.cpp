#include "allocation_counter.h"
#include "bare_chart.h"
#include "bench_table.h"
#include "chart_peers.h"
#include "charts/line_chart.h"
#include "charts/paint_box.h"
#include "charts/raster_clip.h"

#include <QApplication>
#include <QPainter>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace
{

constexpr int POINTS = 18000;  // a discharge of five hours, one line a second
const QSize SIZE(1200, 500);
constexpr double SMOOTHING = 0.2;

/** How the points came into memory: the readings of ten stations in turn, or one log after another. */
enum Filling
{
    RUNNING,
    LOADED,
};

/** The chart as the window has it, and its curves. */
struct View
{
    View(int curves, int points, Filling filling) : image(SIZE, QImage::Format_ARGB32_Premultiplied)
    {
        image.setDotsPerMeterX(3780);
        image.setDotsPerMeterY(3780);
        chart.top_axis.caption = "Voltage vs. Amp-Hours";
        chart.bottom_axis.caption = "Amp-Hours (Ah)";
        chart.left_axis.caption = "Voltage (V)";
        chart.bottom_axis.forced_range.min = 0.0;
        chart.left_axis.forced_range.min = 0.0;
        chart.grid_pen.setColor(QColor(240, 240, 240));
        for (int i = 0; i < curves; ++i) {
            owned.push_back(std::make_unique<Series>());
            owned.back()->pen = QPen(QColor::fromHsv(i * 359 / curves, 255, 200));
            series << owned.back().get();
        }
        fill(curves, points, filling);
    }

    /** Volts with the sensor's steps of 0.01, amps with its steps of 0.1. */
    void add(int curve, int i)
    {
        const double amp_hours = i * 4.0 / 3600.0;
        const double volts = 25.0 - curve * 0.05 - i * 0.0002 + 0.02 * std::sin(i * 0.7 + curve);
        series[curve]->add(amp_hours, std::round(volts * 100.0) / 100.0);
        others.append(QPointF(amp_hours, 4.0));
    }

    void fill(int curves, int points, Filling filling)
    {
        const int in_turn = filling == RUNNING ? 10 : 1;
        for (int first = 0; first < curves; first += in_turn) {
            for (int i = 0; i < points; ++i) {
                for (int curve = first; curve < std::min(curves, first + in_turn); ++curve)
                    add(curve, i);
            }
        }
    }

    void paint(QPainter* painter, double interval)
    {
        const QRect rect(QPoint(0, 0), SIZE);
        {
            const RasterClip clip(painter);
            painter->setBrush(Qt::white);
            painter->drawRect(rect);
        }
        chart.plot(series, painter, rect, 48.0, LINES, interval, 1, 96, false, nullptr);
    }

    void paint_image(double interval)
    {
        QPainter painter(&image);
        paint(&painter, interval);
    }

    Curves curves() const
    {
        Curves list;
        for (const Series* const one : series)
            list << one->points;
        return list;
    }

    QImage image;
    LineChart chart;
    std::vector<std::unique_ptr<Series>> owned;
    QList<Series*> series;
    QList<QPointF> others;  ///< the currents, which come into memory between the voltages
};

/** The rows, and their names, which a row only points to. */
struct Table
{
    void add(const QString& work, int pieces, double target, const std::function<void()>& ours,
             const std::function<void()>& other)
    {
        names.push_back(work.toUtf8());
        rows.push_back(measure(names.back().constData(), pieces, target, ours, other));
    }

    std::deque<QByteArray> names;
    std::vector<BenchRow> rows;
};

/** Repeats light work, so that each round of either side lasts some milliseconds. */
std::function<void()> repeated(int times, const std::function<void()>& work)
{
    return [times, work] {
        for (int i = 0; i < times; ++i)
            work();
    };
}

/** Looks at every point and does nothing with it: no loop that goes curve by curve can be faster. */
void read_points(const QList<Series*>& series)
{
    double sum = 0.0;
    for (const Series* const one : series) {
        for (const QPointF& point : one->points)
            sum += point.x();
    }
    keep(sum);
}

int repeats_for(const View& view)
{
    return view.series.size() > 10 ? 1 : 10;
}

void compare_with_limit(Table& table, View& view, Filling filling, double interval)
{
    const int curves = view.series.size();
    const int repeats = repeats_for(view);
    view.paint_image(interval);
    const BareChart bare(view.chart, view.series, interval);
    QImage bare_image = view.image;
    const QString name = QString("%1 x %2 points, %3, %4")
                             .arg(curves)
                             .arg(POINTS)
                             .arg(filling == RUNNING ? "appended in turn" : "loaded",
                                  interval > 0.0 ? "smoothed" : "every sample");
    table.add(name, repeats, curves > 10 && interval > 0.0 ? 1.00 : 1.05,
              repeated(repeats, [&] { view.paint_image(interval); }),
              repeated(repeats, [&] { bare.paint(bare_image); }));
    if (interval > 0.0)
        table.add("  only to read the points, curve by curve", repeats, 0.0,
                  repeated(repeats, [&] { read_points(view.series); }),
                  repeated(repeats, [&] { bare.paint(bare_image); }));
}

void compare_with_peer(Table& table, View& view, const QString& name, const Peer& peer,
                       double times_as_fast)
{
    if (!peer.paint_image)
        return;
    const int repeats = repeats_for(view);
    const QString work = QString("%1 points, %2, ").arg(view.series.size() * POINTS).arg(name);
    table.add(work + "image", repeats, 1.0 / times_as_fast,
              repeated(repeats, [&view] { view.paint_image(SMOOTHING); }),
              repeated(repeats, peer.paint_image));

    PaintBox box(nullptr);
    box.setAttribute(Qt::WA_OpaquePaintEvent);  // as the window has its charts
    box.resize(SIZE);
    QObject::connect(&box, &PaintBox::sig_paint,
                     [&view](QPainter* painter) { view.paint(painter, SMOOTHING); });
    box.show();
    QApplication::processEvents();
    table.add(work + "window", repeats, 1.0 / times_as_fast,
              repeated(repeats, [&box] { box.repaint(); }), repeated(repeats, peer.paint_window));
}

void compare_with_peers(Table& table, View& view)
{
    const bool heavy = view.series.size() > 10;
    const Curves curves = view.curves();
    compare_with_peer(table, view, "QCustomPlot", qcustomplot_peer(curves, SIZE),
                      heavy ? 1.5 : 2.4);
    compare_with_peer(table, view, "Qwt", qwt_peer(curves, SIZE), heavy ? 3.3 : 4.0);
}

/** Allocations of one repaint, once everything that is cached is warm. */
Allocations allocations_of_repaint(View& view, double interval)
{
    for (int i = 0; i < 3; ++i)
        view.paint_image(interval);
    const Allocations before = allocations();
    view.paint_image(interval);
    const Allocations after = allocations();
    return {after.count - before.count, after.bytes - before.bytes};
}

void print_allocations()
{
    QTextStream out(stdout);
    out << "\nHeap requests of one repaint, the toolkit's included\n\n";
    for (const int points : {2000, 18000, 180000}) {
        View view(3, points, LOADED);
        for (const double interval : {SMOOTHING, 0.0}) {
            const Allocations spent = allocations_of_repaint(view, interval);
            out << QString("  3 x %1 points, %2: %3 requests, %4 bytes, %5 of them for vertices\n")
                       .arg(points, 6)
                       .arg(interval > 0.0 ? "smoothed    " : "every sample")
                       .arg(spent.count)
                       .arg(spent.bytes)
                       .arg(interval > 0.0 ? 3 * int(points * 4.0 / 3600.0 / SMOOTHING + 3) * 16
                                           : 3 * (points + 3) * 16);
        }
    }
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    Table limits;
    Table peers;
    for (const int curves : {3, 50}) {
        for (const Filling filling : {RUNNING, LOADED}) {
            View view(curves, POINTS, filling);
            for (const double interval : {SMOOTHING, 0.0})
                compare_with_limit(limits, view, filling, interval);
            if (filling == RUNNING)
                compare_with_peers(peers, view);
        }
    }
    std::printf("Repaint of a chart at 1200 x 500; the limit is a bare loop\n\n");
    print_bench_table(limits.rows);
    std::printf("\nOur default view; the limit is the default view of another library\n\n");
    print_bench_table(peers.rows);
    print_allocations();
    return 0;
}
