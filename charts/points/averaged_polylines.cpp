#include "charts/points/averaged_polylines.h"

#include "charts/points/bucket_scan.h"

namespace
{

/** A vertex for each bucket, if those are fewer than the points. What does not rise may have more. */
int room_for(const QList<QPointF>& points, double interval)
{
    const int ends_and_last_mean = 3;
    const double buckets = points.last().x() / interval;
    const bool reduced = buckets >= 0.0 && buckets < points.size();
    return (reduced ? static_cast<int>(buckets) : points.size()) + ends_and_last_mean;
}

}  // namespace

QPolygonF averaged_polyline(const MappedPoints& curve, double interval)
{
    const QList<QPointF>& points = curve.points;
    QPolygonF vertices;
    if (points.isEmpty())
        return vertices;
    vertices.reserve(room_for(points, interval));
    const PointMap map = curve.map;
    const auto append = [&vertices, map](const QPointF& point) {
        vertices.append(map.map(point));
    };
    if (interval > points.last().x()) {
        for_each_point(points.constBegin(), points.constEnd(), append);
        return vertices;
    }
    append(points.first());
    for_each_bucket(PointScan(points.constBegin(), points.constEnd()), interval, append);
    append(points.last());
    return vertices;
}
