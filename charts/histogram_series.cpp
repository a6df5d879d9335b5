#include "charts/histogram_series.h"

#include "charts/chart_pen.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

/** Far outside of any device, and near enough for the width of a rectangle to be an int. */
int drawable(int pixel)
{
    constexpr int far_away = 1 << 29;
    return std::clamp(pixel, -far_away, far_away);
}

}  // namespace

HistogramSeries::HistogramSeries(Axis* new_x_axis, Axis* new_y_axis)
    : y_axis(new_y_axis),
      x_axis(new_x_axis),
      pen(chart_pen(Qt::black, 1.0)),
      brush(Qt::cyan, Qt::SolidPattern)
{
}

void HistogramSeries::add(double value)
{
    values.append(value);
    x_axis->range.include(value);
}

void HistogramSeries::populate_bins(double bin_width)
{
    constexpr int max_bins = 1000000;
    bins.clear();
    const int count = to_pixel(std::ceil(x_axis->range.max / bin_width));
    if (count > max_bins)
        return;
    bins.reserve(count);
    for (int i = 0; i < count; ++i)
        bins.append(0);
    for (int i = 1; i < values.size(); ++i) {
        const int bin = to_pixel(values.at(i) / bin_width);
        if (bin >= 0 && bin < bins.size())
            ++bins[bin];
    }
}

int HistogramSeries::map_x(double x) const
{
    return x_axis->map_value(x);
}

int HistogramSeries::map_y(double y) const
{
    return y_axis->map_value(y);
}

void HistogramSeries::plot(QPainter* painter, double bin_width, int index, int count) const
{
    painter->setPen(pen);
    painter->setBrush(brush);
    const double share_begin = static_cast<double>(index) / count;
    const double share_end = (index + 1.0) / count;
    const int bottom = drawable(map_y(0.0)) - 1;
    for (int bin = 0; bin < bins.size(); ++bin) {
        if (bins.at(bin) == 0)
            continue;
        const int left = drawable(map_x((bin + share_begin) * bin_width));
        const int right = drawable(map_x((bin + share_end) * bin_width)) - 1;
        const int top = drawable(map_y(bins.at(bin)));
        painter->drawRect(QRect(QPoint(left, top), QPoint(right, bottom)));
    }
}
