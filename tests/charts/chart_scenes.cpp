#include "chart_scenes.h"

#include "expected_drawing.h"

#include <QPainter>

ChartBench::ChartBench()
{
    pin_fonts(chart);
    chart.grid_pen =
        QPen(QBrush(QColor(240, 240, 240)), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    chart.top_axis.caption = "Voltage vs. Amp-Hours";
    chart.bottom_axis.caption = "Amp-Hours (Ah)";
    chart.left_axis.caption = "Voltage (V)";
    chart.bottom_axis.forced_range.min = 0.0;
    chart.left_axis.forced_range.min = 0.0;
}

Series& ChartBench::add(const QColor& colour)
{
    owned.push_back(std::make_unique<Series>());
    owned.back()->pen = QPen(colour);
    series << owned.back().get();
    return *owned.back();
}

void ChartBench::plot(QPainter* painter, QRect rect)
{
    const double pixels = print ? 300.0 : 48.0;
    chart.plot(series, painter, rect, pixels, style, interval, 2, print ? 600 : 96, print, zoom);
}

const RecordingPaintDevice& ChartBench::record(QRect rect)
{
    device = std::make_unique<RecordingPaintDevice>(rect.width(), rect.height(), print ? 600 : 96);
    QPainter painter(device.get());
    painter.setBrush(Qt::white);
    plot(&painter, rect);
    painter.end();
    return *device;
}

QImage ChartBench::image(QRect rect)
{
    QImage drawn(rect.size().expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    drawn.setDotsPerMeterX(3780);
    drawn.setDotsPerMeterY(3780);
    drawn.fill(Qt::white);
    QPainter painter(&drawn);
    painter.setBrush(Qt::white);
    plot(&painter, rect);
    return drawn;
}

namespace
{

/** A discharge: falling from `start`, the faster the emptier. */
void add_discharge(ChartBench& bench, const QColor& colour, double start, int count = 30)
{
    Series& series = bench.add(colour);
    for (int i = 0; i < count; ++i)
        series.add(i * 0.125, start - i * 0.0625 - (i > 24 ? (i - 24) * 0.5 : 0.0));
}

}  // namespace

void one(ChartBench& bench)
{
    add_discharge(bench, Qt::red, 25.0);
}

void many(ChartBench& bench)
{
    add_discharge(bench, Qt::red, 25.0);
    add_discharge(bench, QColor(0, 127, 0), 25.5, 34);
    bench.add();
    add_discharge(bench, Qt::blue, 24.0, 20);
    add_discharge(bench, Qt::black, 99.0);
    bench.series.last()->visible = false;
}

void zoomed(ChartBench& bench)
{
    many(bench);
    bench.zoom_interval.x.include(1.1);
    bench.zoom_interval.x.include(2.3);
    bench.zoom_interval.y.include(22.2);
    bench.zoom_interval.y.include(25.1);
    bench.zoom = &bench.zoom_interval;
}

void twin_axes(ChartBench& bench)
{
    one(bench);
    bench.chart.right_axis.caption = "Current (A)";
    Series& current = bench.add(Qt::blue);
    current.set_axes(&bench.chart.top_axis, &bench.chart.right_axis);
    for (int i = 0; i < 10; ++i)
        current.add(i * 0.25, 4.0 + i * 0.125);
}

static void negative_ranges(ChartBench& bench)
{
    bench.chart.bottom_axis.forced_range.clear();
    bench.chart.left_axis.forced_range.clear();
    Series& series = bench.add();
    for (int i = 0; i < 8; ++i)
        series.add(-7.5 + i, -0.5 - i * i * 0.25);
}

static void single_point(ChartBench& bench)
{
    bench.add(Qt::red).add(2.5, 12.5);
}

static void zero_span(ChartBench& bench)
{
    bench.chart.bottom_axis.forced_range.clear();
    bench.chart.left_axis.forced_range.clear();
    Series& series = bench.add(Qt::red);
    series.add(2.5, 12.5);
    series.add(2.5, 12.5);
}

void print_600(ChartBench& bench)
{
    many(bench);
    bench.print = true;
}

void dots(ChartBench& bench)
{
    Series& series = bench.add(Qt::red);
    for (int i = 0; i < 5; ++i)
        series.add(0.5 + i, 30.0 + 2.0 * i);
    bench.style = DOTS;
    bench.interval = 0.2;
}

static void smoothing_with_gaps(ChartBench& bench)
{
    Series& series = bench.add(Qt::red);
    for (int i = 0; i < 40; ++i)
        series.add(i * 0.0625 + (i > 20 ? 1.5 : 0.0), 20.0 + (i % 2) * 2.0);
    bench.interval = 0.2;
}

static void nan_vertices(ChartBench& bench)
{
    Series& late = bench.add(Qt::red);  // its first bucket is empty
    for (int i = 0; i < 6; ++i)
        late.add(1.0 + i * 0.5, 10.0 + i);
    Series& broken = bench.add(Qt::blue);
    for (int i = 0; i < 6; ++i)
        broken.add(i * 0.5, i == 3 ? qQNaN() : 5.0 + i);
}

void no_series(ChartBench&)
{
}

void no_captions(ChartBench& bench)
{
    one(bench);
    bench.chart.top_axis.caption.clear();
    bench.chart.bottom_axis.caption.clear();
    bench.chart.left_axis.caption.clear();
}

const std::vector<NamedScene> SCENES = {
    {"no_series", no_series},
    {"one", one},
    {"many", many},
    {"zoomed", zoomed},
    {"twin_axes", twin_axes},
    {"negative_ranges", negative_ranges},
    {"single_point", single_point},
    {"zero_span", zero_span},
    {"print_600", print_600},
    {"dots", dots},
    {"smoothing_with_gaps", smoothing_with_gaps},
    {"nan_vertices", nan_vertices},
    {"no_captions", no_captions},
};

QRect plot_area_of(const LineChart& chart)
{
    const Axis& x = chart.bottom_axis;
    const Axis& y = chart.left_axis;
    return QRect(x.origin, y.origin - y.length + 1, x.length, y.length);
}
