#include "charts/series.h"

#include "charts/chart_pen.h"
#include "charts/points/averaged_polylines.h"
#include "charts/points/bucket_scan.h"
#include "common/assertions.h"

#include <QPainter>

namespace
{

QPointF mean_of(const QPointF* points, int count)
{
    Bucket bucket;
    for (int i = 0; i < count; ++i)
        bucket.add(points[i]);
    return bucket.mean();
}

}  // namespace

Series::Series() : pen(chart_pen(Qt::black, 1.0))
{
}

Series::~Series() = default;

Axis* Series::get_x_axis() const
{
    return x_axis;
}

Axis* Series::get_y_axis() const
{
    return y_axis;
}

void Series::set_axes(Axis* new_x_axis, Axis* new_y_axis)
{
    x_axis = new_x_axis;
    y_axis = new_y_axis;
    assert_fatal(x_axis->side == TOP || x_axis->side == BOTTOM,
                 "Series::Series(): x_axis must be top or bottom", true);
    assert_fatal(y_axis->side == LEFT || y_axis->side == RIGHT,
                 "Series::Series(): y_axis must be left or right", true);
}

void Series::add(double x, double y)
{
    points.append(QPointF(x, y));
    x_range.include(x);
    y_range.include(y);
}

double Series::avg_y() const
{
    if (points.isEmpty())
        return 0.0;
    double sum = 0.0;
    for_each_point(points.constBegin(), points.constEnd(),
                   [&sum](const QPointF& point) { sum += point.y(); });
    return sum / points.size();
}

int Series::binary_search(double x) const
{
    if (points.isEmpty())
        return -1;
    int lo = 0;
    int hi = points.size() - 1;
    while (lo <= hi) {
        const int mid = ((hi ^ lo) >> 1) + (hi & lo);
        const double mid_x = points.at(mid).x();
        if (mid_x > x)
            hi = mid - 1;
        else if (x > mid_x)
            lo = mid + 1;
        else
            return mid;
    }
    return ~hi;
}

int Series::map_x(double x) const
{
    return x_axis->map_value(x);
}

int Series::map_y(double y) const
{
    return y_axis->map_value(y);
}

double Series::unmap_x(int x) const
{
    return x_axis->unmap_value(x);
}

double Series::unmap_y(int y) const
{
    return y_axis->unmap_value(y);
}

QPoint Series::map_point(QPointF point) const
{
    return QPoint(map_x(point.x()), map_y(point.y()));
}

QPointF Series::unmap_point(QPoint point) const
{
    return QPointF(unmap_x(point.x()), unmap_y(point.y()));
}

void Series::plot(QPainter* painter, ChartStyle style, double averaging_interval, int dot_radius,
                  int dpi, bool print) const
{
    if (points.isEmpty())
        return;
    painter->setPen(print ? half_point_pen(pen, dpi) : pen);
    if (style == LINES) {
        const PointMap map{x_axis->pixel_map(), y_axis->pixel_map()};
        painter->drawPolyline(averaged_polyline({points, map}, averaging_interval));
        return;
    }
    for (const QPointF& point : points)
        plot_dot(painter, map_point(point), dot_radius);
}

QPolygonF smooth(QPolygonF polygon, int window)
{
    if (window < 1 || polygon.size() < window)
        return polygon;
    QPolygonF means;
    const QPolygonF& input = polygon;
    const int count = input.size() - window;
    means.reserve(count);
    for (int i = 0; i < count; ++i)
        means.append(mean_of(input.constData() + i, window));
    return means;
}

QPointF polyline_average(QPolygonF polygon)
{
    return mean_of(polygon.constData(), polygon.size());
}

void plot_dot(QPainter* painter, QPoint centre, int radius)
{
    painter->save();
    painter->setBrush(QBrush(painter->pen().color()));
    const QPointF corner(static_cast<double>(centre.x()) - radius,
                         static_cast<double>(centre.y()) - radius);
    const double diameter = 2.0 * radius;
    painter->drawEllipse(QRectF(corner, QSizeF(diameter, diameter)));
    painter->restore();
}
