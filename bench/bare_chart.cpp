#include "bare_chart.h"

#include <QPainter>

BareChart::BareChart(const LineChart& new_chart, const QList<Series*>& new_series,
                     double new_interval)
    : chart(new_chart), series(new_series), interval(new_interval)
{
    const Axis& x_axis = chart.bottom_axis;
    const Axis& y_axis = chart.left_axis;
    plot_area =
        QRect(x_axis.origin, y_axis.origin - y_axis.length + 1, x_axis.length, y_axis.length);
    for (int i = x_axis.min_gridline_index(); i <= x_axis.max_gridline_index(); ++i) {
        const double value = i * x_axis.gridline_spacing;
        const int x = x_axis.map_value(value);
        gridlines << Gridline{
            {QPointF(x, plot_area.bottom() + 5.5), x_axis.gridline_label(value), 0.5, 0.0},
            QLine(x, plot_area.bottom(), x, plot_area.top())};
    }
    for (int i = y_axis.min_gridline_index(); i <= y_axis.max_gridline_index(); ++i) {
        const double value = i * y_axis.gridline_spacing;
        const int y = y_axis.map_value(value);
        gridlines << Gridline{
            {QPointF(plot_area.left() - 5.5, y), y_axis.gridline_label(value), 1.0, 0.5},
            QLine(plot_area.left(), y, plot_area.right(), y)};
    }
}

QPolygonF BareChart::curve_of(const Series& one) const
{
    const double x_scale = one.x_axis->scale();
    const double y_scale = one.y_axis->scale();
    const double x_min = one.x_axis->range.min;
    const double y_min = one.y_axis->range.min;
    const int left = one.x_axis->origin;
    const int bottom = one.y_axis->origin;
    QPolygonF polygon;
    polygon.reserve(one.points.size());
    for (const QPointF& point : one.points)
        polygon.append(QPointF(int(x_scale * (point.x() - x_min) + left),
                               int(y_scale * (y_min - point.y()) + bottom)));
    return polygon;
}

QPolygonF BareChart::smoothed_curve_of(const Series& one) const
{
    const double x_scale = one.x_axis->scale();
    const double y_scale = one.y_axis->scale();
    const double x_min = one.x_axis->range.min;
    const double y_min = one.y_axis->range.min;
    const int left = one.x_axis->origin;
    const int bottom = one.y_axis->origin;
    QPolygonF polygon;
    double sum_x = 0.0;
    double sum_y = 0.0;
    int count = 0;
    double boundary = interval;
    for (const QPointF& point : one.points) {
        if (point.x() > boundary) {
            polygon.append(QPointF(int(x_scale * (sum_x / count - x_min) + left),
                                   int(y_scale * (y_min - sum_y / count) + bottom)));
            sum_x = 0.0;
            sum_y = 0.0;
            count = 0;
            boundary += interval;
        }
        sum_x += point.x();
        sum_y += point.y();
        ++count;
    }
    return polygon;
}

/** With a transform of its own for each text, which is how the chart is asked to draw them. */
void BareChart::draw(QPainter& painter, const Text& text)
{
    painter.save();
    painter.translate(text.at);
    painter.rotate(-text.rotation);
    const QRect bounds = painter.fontMetrics().boundingRect(text.text);
    painter.drawText(QPointF(-bounds.width() * text.part_left,
                             -bounds.height() * text.part_above - bounds.top()),
                     text.text);
    painter.restore();
}

void BareChart::paint(QImage& image) const
{
    QPainter painter(&image);
    painter.setClipRect(image.rect());
    painter.setBrush(Qt::white);
    painter.drawRect(image.rect());
    painter.setPen(chart.frame_pen);
    painter.drawRect(plot_area);
    painter.setFont(chart.label_font);
    for (const Gridline& gridline : gridlines) {
        painter.setPen(chart.text_pen);
        draw(painter, gridline.label);
        painter.setPen(chart.grid_pen);
        painter.drawLine(gridline.line);
    }
    painter.setPen(chart.text_pen);
    painter.setFont(chart.caption_font);
    const QPoint centre = image.rect().center();
    draw(painter, {QPointF(centre.x(), 13), chart.top_axis.caption, 0.5, 0.5});
    draw(painter, {QPointF(centre.x(), image.height() - 14), chart.bottom_axis.caption, 0.5, 0.5});
    draw(painter, {QPointF(13, centre.y()), chart.left_axis.caption, 0.5, 0.5, 90});

    painter.setClipRect(plot_area);
    for (const Series* const one : series) {
        painter.setPen(one->pen);
        painter.drawPolyline(interval > 0.0 ? smoothed_curve_of(*one) : curve_of(*one));
    }
    painter.setClipRect(image.rect());
    painter.setBrush(Qt::NoBrush);
    painter.setPen(chart.frame_pen);
    painter.drawRect(plot_area);
}
