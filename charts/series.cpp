#include "charts/series.h"

#include "charts/averaged_polylines.h"
#include "charts/bucket_scan.h"
#include "charts/chart_pen.h"
#include "charts/point_map.h"
#include "common/assertions.h"

#include <QPainter>

#include <new>

namespace
{

QPen pen_for(const QPen& pen, int dpi, bool print)
{
    return print ? half_point_pen(pen, dpi) : pen;
}

/** Room for vertices that nobody clears: for long curves that costs as much as a pass over them. */
class VertexRoom
{
public:
    explicit VertexRoom(int count)
        : begin(static_cast<QPointF*>(::operator new(sizeof(QPointF) * count)))
    {
    }

    ~VertexRoom()
    {
        ::operator delete(begin);
    }

    VertexRoom(const VertexRoom&) = delete;
    VertexRoom& operator=(const VertexRoom&) = delete;

    QPointF* const begin;
};

void draw_every_point(QPainter* painter, const QList<QPointF>& points, const PointMap map)
{
    const VertexRoom room(points.size());
    QPointF* end = room.begin;
    for_each_point(points.constBegin(), points.constEnd(),
                   [&end, map](const QPointF& point) { new (end++) QPointF(map.map(point)); });
    painter->drawPolyline(room.begin, points.size());
}

/** About a bucket per point, and never more: room for all of them needs no test at each. */
void draw_small_buckets(QPainter* painter, const QList<QPointF>& points, const PointMap map,
                        double interval)
{
    const int ends_and_last_mean = 3;
    const VertexRoom room(points.size() + ends_and_last_mean);
    QPointF* end = room.begin;
    const auto append = [&end, map](const QPointF& point) {
        new (end++) QPointF(map.map(point));
    };
    append(points.first());
    BucketScan scan(interval);
    scan.take(points.constBegin(), points.constEnd(), append);
    append(scan.last_mean());
    append(points.last());
    painter->drawPolyline(room.begin, static_cast<int>(end - room.begin));
}

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
    if (is_reduced(style, averaging_interval)) {
        plot_polyline(painter, averaged_polylines({this}, averaging_interval).first(), dpi, print);
        return;
    }
    painter->setPen(pen_for(pen, dpi, print));
    if (style == DOTS) {
        for (const QPointF& point : points)
            plot_dot(painter, map_point(point), dot_radius);
        return;
    }
    if (points.isEmpty())
        return;

    const PointMap map{x_axis->pixel_map(), y_axis->pixel_map()};
    if (averaging_interval > points.last().x())
        draw_every_point(painter, points, map);
    else
        draw_small_buckets(painter, points, map, averaging_interval);
}

bool Series::is_reduced(ChartStyle style, double averaging_interval) const
{
    if (style != LINES || points.isEmpty() || averaging_interval > points.last().x())
        return false;
    const double buckets = points.last().x() / averaging_interval;
    return buckets >= 0.0 && buckets < points.size() / 8;
}

void Series::plot_polyline(QPainter* painter, const QPolygonF& vertices, int dpi, bool print) const
{
    painter->setPen(pen_for(pen, dpi, print));
    painter->drawPolyline(vertices);
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
