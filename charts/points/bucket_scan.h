#pragma once

#include "charts/points/point_scan.h"

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

    /**
     * Adds the points up to the limit in x, if there are any. The sums are the function's own: in an
     * object they would go to memory and back at every point.
     */
    static Bucket filled(Bucket sums, PointScan& scan, double limit)
    {
        scan.visit_while([&sums, limit](const QPointF& next) {
            if (next.x() > limit)
                return false;
            sums.add(next);
            return true;
        });
        return sums;
    }
};

/**
 * Puts points into buckets of equal width in x and calls `visit` with the mean of each. The boundary
 * grows by one interval per test, so that points behind a gap are buckets of one until it has caught
 * up. A first bucket may be empty: its mean is NaN.
 */
template <typename Visit> void for_each_bucket(PointScan scan, double interval, Visit visit)
{
    double boundary = interval;
    Bucket bucket = Bucket::filled(Bucket(), scan, boundary);
    while (!scan.at_end()) {
        visit(bucket.mean());
        boundary += interval;
        bucket = Bucket();
        bucket.add(scan.next());
        bucket = Bucket::filled(bucket, scan, boundary);
    }
    visit(bucket.mean());
}
