#include "charts/line_chart.h"

#include "charts/chart_pen.h"
#include "charts/plot_text.h"
#include "charts/raster_clip.h"

#include <QFontInfo>
#include <QPainter>

namespace
{

bool is_plotted(const Series* series)
{
    return series->visible && !series->points.isEmpty();
}

void include_unless_infinite(Interval& range, double end)
{
    if (!qIsInf(end))
        range.include(end);
}

}  // namespace

LineChart::LineChart()
    : x_axes{&bottom_axis, &top_axis},
      y_axes{&left_axis, &right_axis},
      axes{&bottom_axis, &top_axis, &left_axis, &right_axis},
      text_pen(chart_pen(Qt::black, 1.0)),
      frame_pen(chart_pen(Qt::black, 1.0)),
      grid_pen(chart_pen(Qt::lightGray, 1.0)),
      font_family("Helvetica"),
      label_font(font_family, 8),
      caption_font(font_family, 10),
      top_axis(TOP),
      bottom_axis(BOTTOM),
      left_axis(LEFT),
      right_axis(RIGHT)
{
}

LineChart::~LineChart() = default;

Series* LineChart::add_series(QString name, Axis* x_axis, Axis* y_axis)
{
    auto* const series = new Series;
    series->set_axes(x_axis != nullptr ? x_axis : &bottom_axis,
                     y_axis != nullptr ? y_axis : &left_axis);
    series->name = name;
    return series;
}

void LineChart::calc_axis_min_max(QList<Series*> series, ZoomInterval* zoom)
{
    for (Axis* const axis : axes) {
        axis->range.clear();
        axis->in_use = false;
        if (zoom == nullptr) {
            include_unless_infinite(axis->range, axis->forced_range.min);
            include_unless_infinite(axis->range, axis->forced_range.max);
        }
    }
    for (Series* const curve : qAsConst(series)) {
        if (!is_plotted(curve))
            continue;
        curve->x_axis->in_use = true;
        curve->y_axis->in_use = true;
        curve->x_axis->range.include(zoom != nullptr ? zoom->x : curve->x_range);
        curve->y_axis->range.include(zoom != nullptr ? zoom->y : curve->y_range);
    }
}

void LineChart::calc_axis_gridline_spacings(double pixels)
{
    for (Axis* const axis : axes) {
        if (axis->in_use)
            axis->optimize_gridline_spacing(pixels);
    }
}

void LineChart::plot_axis_captions(QPainter* painter, QRect rect) const
{
    painter->setFont(caption_font);
    painter->setPen(text_pen);
    for (const Axis* const axis : axes) {
        if (!axis->caption.isEmpty())
            axis->plot_caption(painter, rect);
    }
}

void LineChart::get_max_caption_sizes(QPainter* painter, int& left, int& top, int& right,
                                      int& bottom) const
{
    painter->setFont(label_font);
    const QFontMetrics metrics = painter->fontMetrics();
    left = left_axis.get_max_caption_width(metrics);
    right = right_axis.get_max_caption_width(metrics);

    // The caption decides, not the use, on purpose: a titled chart keeps a line under its title.
    top = top_axis.caption.isEmpty() ? 0 : metrics.height();
    bottom = bottom_axis.caption.isEmpty() ? 0 : metrics.height();
}

void LineChart::plot_gridlines(QPainter* painter, QRect rect, int dpi, bool print) const
{
    painter->setFont(label_font);
    const double half = painter->fontInfo().pixelSize() * 0.5;
    const QPen line_pen = print ? half_point_pen(grid_pen, dpi) : grid_pen;
    for (const Axis* const axis : x_axes) {
        if (axis->in_use && axis->has_grid())
            plot_x_gridlines(painter, rect, *axis, half, line_pen);
    }

    // In grid_pen even on paper, unlike the vertical lines, on purpose.
    for (const Axis* const axis : y_axes) {
        if (axis->in_use && axis->has_grid())
            plot_y_gridlines(painter, rect, *axis, half);
    }
}

void LineChart::plot_x_gridlines(QPainter* painter, QRect rect, const Axis& axis, double half,
                                 const QPen& line_pen) const
{
    const bool at_bottom = axis.side == BOTTOM;
    const double y = at_bottom ? rect.bottom() + half : rect.top() - half;
    const int alignment = at_bottom ? Qt::AlignTop : Qt::AlignBottom;
    for (int i = axis.min_gridline_index(); i <= axis.max_gridline_index(); ++i) {
        const double value = axis.gridline_spacing * i;
        const int x = axis.map_value(value);
        painter->setPen(text_pen);
        plot_text(painter, axis.gridline_label(value), 0, Qt::AlignHCenter, alignment, false, x, y);
        if (at_bottom) {
            painter->setPen(line_pen);
            painter->drawLine(x, rect.bottom(), x, rect.top());
        }
    }
}

void LineChart::plot_y_gridlines(QPainter* painter, QRect rect, const Axis& axis, double half) const
{
    const bool at_left = axis.side == LEFT;
    const double x = at_left ? rect.left() - half : rect.right() + half;
    const int alignment = at_left ? Qt::AlignRight : Qt::AlignLeft;
    for (int i = axis.min_gridline_index(); i <= axis.max_gridline_index(); ++i) {
        const double value = axis.gridline_spacing * i;
        const int y = axis.map_value(value);
        painter->setPen(text_pen);
        plot_text(painter, axis.gridline_label(value), 0, alignment, Qt::AlignVCenter, false, x, y);
        if (at_left) {
            painter->setPen(grid_pen);
            painter->drawLine(rect.left(), y, rect.right(), y);
        }
    }
}

LineChart::Sides LineChart::margins(int px) const
{
    const auto margin = [px](const Axis& axis) {
        return (axis.caption.isEmpty() ? 2 : 3) * px;
    };
    return {margin(left_axis), margin(top_axis), margin(right_axis), margin(bottom_axis)};
}

void LineChart::place_axes(QRect plot_area)
{
    for (Axis* const axis : x_axes) {
        axis->origin = plot_area.left();
        axis->length = plot_area.width();
    }
    for (Axis* const axis : y_axes) {
        axis->origin = plot_area.bottom();
        axis->length = plot_area.height();
    }
}

void LineChart::fit_grids(double gridline_pixels)
{
    calc_axis_gridline_spacings(gridline_pixels);
    Axis::match_num_intervals(&left_axis, &right_axis);
    Axis::match_num_intervals(&bottom_axis, &top_axis);
}

QRect LineChart::lay_out(QPainter* painter, QRect rect, double gridline_pixels,
                         const QList<Series*>& series, ZoomInterval* zoom)
{
    painter->setFont(label_font);
    const Sides margin = margins(painter->fontInfo().pixelSize());
    const QRect inner = rect.adjusted(margin.left, margin.top, -margin.right, -margin.bottom);
    place_axes(inner);
    calc_axis_min_max(series, zoom);
    fit_grids(gridline_pixels);

    // The labels narrow the plot area, which changes the scale; the ranges stay snapped and can
    // only grow.
    Sides labels{};
    get_max_caption_sizes(painter, labels.left, labels.top, labels.right, labels.bottom);
    const QRect plot_area = inner.adjusted(labels.left, labels.top, -labels.right, -labels.bottom);
    place_axes(plot_area);
    fit_grids(gridline_pixels);
    return plot_area;
}

/** On paper the points per inch are divided as integers on purpose: slightly thinner than curves. */
QPen LineChart::frame_pen_for(int dpi, bool print) const
{
    return print ? chart_pen(frame_pen.color(), 0.5 * (dpi / 72)) : frame_pen;
}

void LineChart::plot(QList<Series*> series, QPainter* painter, QRect rect, double gridline_pixels,
                     ChartStyle style, double averaging_interval, int dot_radius, int dpi,
                     bool print, ZoomInterval* zoom)
{
    for (Series* const curve : qAsConst(series)) {
        if (curve->x_axis == nullptr && curve->y_axis == nullptr)
            curve->set_axes(&bottom_axis, &left_axis);
    }
    const QRect plot_area = lay_out(painter, rect, gridline_pixels, series, zoom);
    const QPen frame = frame_pen_for(dpi, print);
    {
        const RasterClip clip(painter);
        painter->setPen(frame);
        painter->drawRect(plot_area);
        plot_gridlines(painter, plot_area, dpi, print);
        plot_axis_captions(painter, rect);
    }

    painter->setClipRect(plot_area, Qt::ReplaceClip);
    for (const Series* const curve : qAsConst(series)) {
        if (is_plotted(curve))
            curve->plot(painter, style, averaging_interval, dot_radius, dpi, print);
    }
    painter->setClipping(false);

    // Once more, so that the curves do not overwrite it.
    const RasterClip clip(painter);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(frame);
    painter->drawRect(plot_area);
}

void LineChart::lock_all_series(QList<Series*> series)
{
    for (Series* const curve : qAsConst(series))
        curve->mutex.lock();
}

void LineChart::unlock_all_series(QList<Series*> series)
{
    for (Series* const curve : qAsConst(series))
        curve->mutex.unlock();
}
