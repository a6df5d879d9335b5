#include "charts/series.h"

#include "charts/chart_pen.h"
#include "charts/point_scan.h"
#include "common/assertions.h"

#include <QPainter>

#include <new>

namespace
{

/** Sums of points, added in their order. */
struct Bucket
{
    double sum_x = 0.0;
    double sum_y = 0.0;
    int count = 0;

    void add(const QPointF& point)
    {
        sum_x += point.x();
        sum_y += point.y();
        ++count;
    }

    /** NaN if empty. Most buckets of a curve that is not smoothed hold one: it needs no division. */
    QPointF mean() const
    {
        return count == 1 ? QPointF(sum_x, sum_y) : QPointF(sum_x / count, sum_y / count);
    }
};

/** Both axes as values: the address of such a local goes nowhere, so that no store makes it stale. */
struct PointMap
{
    PixelMap x;
    PixelMap y;

    QPointF map(const QPointF& point) const
    {
        return QPointF(x.map(point.x()), y.map(point.y()));
    }
};

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
    for_each_point(points,
                   [&end, map](const QPointF& point) { new (end++) QPointF(map.map(point)); });
    painter->drawPolyline(room.begin, points.size());
}

/**
 * Adds the points up to the boundary, if there are any. The sums are the function's own: in an object
 * they would go to memory and back at every point.
 */
Bucket fill(Bucket sums, PointScan& scan, double boundary)
{
    scan.visit_while([&sums, boundary](const QPointF& next) {
        if (next.x() > boundary)
            return false;
        sums.add(next);
        return true;
    });
    return sums;
}

/**
 * First point, bucket means, last point. The boundary grows by one interval per test, so that points
 * behind a gap are buckets of one until it has caught up. A first bucket may be empty: its NaN is
 * mapped like any mean and lies far outside of the clip rectangle.
 */
template <typename Append>
void append_averaged(const QList<QPointF>& points, const PointMap map, double interval,
                     Append append)
{
    append(map.map(points.first()));
    PointScan scan(points);
    double boundary = interval;
    Bucket bucket = fill(Bucket(), scan, boundary);
    while (!scan.at_end()) {
        append(map.map(bucket.mean()));
        bucket = Bucket();
        boundary += interval;
        bucket.add(scan.next());
        bucket = fill(bucket, scan, boundary);
    }
    append(map.map(bucket.mean()));
    append(map.map(points.last()));
}

void draw_averaged(QPainter* painter, const QList<QPointF>& points, const PointMap map,
                   double interval)
{
    const int ends_and_last_mean = 3;
    const double buckets = points.last().x() / interval;
    if (buckets >= 0.0 && buckets < points.size() / 8) {
        QPolygonF vertices;
        vertices.reserve(to_pixel(buckets) + ends_and_last_mean);
        append_averaged(points, map, interval,
                        [&vertices](const QPointF& vertex) { vertices.append(vertex); });
        painter->drawPolyline(vertices);
        return;
    }

    // About a bucket per point and never more: room for all of them needs no test at each.
    const VertexRoom room(points.size() + ends_and_last_mean);
    QPointF* end = room.begin;
    append_averaged(points, map, interval,
                    [&end](const QPointF& vertex) { new (end++) QPointF(vertex); });
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
    for_each_point(points, [&sum](const QPointF& point) { sum += point.y(); });
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
    painter->setPen(print ? half_point_pen(pen, dpi) : pen);
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
        draw_averaged(painter, points, map, averaging_interval);
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
