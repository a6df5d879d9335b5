#include "charts/averaged_polylines.h"

#include "charts/bucket_scan.h"
#include "charts/point_map.h"
#include "charts/point_sweep.h"
#include "charts/series.h"

#include <vector>

namespace
{

/** A polyline in the making. */
struct Averaging
{
    PointMap map;
    BucketScan scan;
    QPolygonF vertices;

    void append(const QPointF& point)
    {
        vertices.append(map.map(point));
    }
};

Averaging begin_averaging(const Series& curve, double interval)
{
    const int ends_and_last_mean = 3;
    const double buckets = curve.points.last().x() / interval;
    Averaging averaging{
        {curve.x_axis->pixel_map(), curve.y_axis->pixel_map()}, BucketScan(interval), {}};
    averaging.vertices.reserve(static_cast<int>(buckets) + ends_and_last_mean);
    averaging.append(curve.points.first());
    return averaging;
}

QPolygonF finish(Averaging& averaging, const Series& curve)
{
    averaging.append(averaging.scan.last_mean());
    averaging.append(curve.points.last());
    return averaging.vertices;
}

}  // namespace

QVector<QPolygonF> averaged_polylines(const QList<const Series*>& curves, double interval)
{
    std::vector<Averaging> averagings;
    QVector<const QList<QPointF>*> lists;
    for (const Series* const curve : curves) {
        averagings.push_back(begin_averaging(*curve, interval));
        lists.append(&curve->points);
    }

    PointSweep sweep(lists);
    PointRun run{};
    while (sweep.next(run)) {
        Averaging& averaging = averagings[run.list];
        averaging.scan.take(run.begin, run.end,
                            [&averaging](const QPointF& mean) { averaging.append(mean); });
    }

    QVector<QPolygonF> polylines;
    for (int i = 0; i < curves.size(); ++i)
        polylines.append(finish(averagings[i], *curves.at(i)));
    return polylines;
}
