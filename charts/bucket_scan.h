#pragma once

#include "charts/point_scan.h"

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

/**
 * Puts points into buckets of equal width in x, as they come. The boundary grows by one interval per
 * test, so that points behind a gap are buckets of one until it has caught up. A first bucket may be
 * empty: its mean is NaN.
 */
class BucketScan
{
public:
    explicit BucketScan(double new_interval) : interval(new_interval), boundary(new_interval)
    {
    }

    /** Goes on with these points; calls `append` with the mean of each bucket that they complete. */
    template <typename Append> void take(PointIterator begin, PointIterator end, Append append)
    {
        PointScan scan(begin, end);
        Bucket sums = fill(bucket, scan, boundary);
        while (!scan.at_end()) {
            append(sums.mean());
            boundary += interval;
            sums = Bucket();
            sums.add(scan.next());
            sums = fill(sums, scan, boundary);
        }
        bucket = sums;
    }

    /** Mean of the bucket that is being filled. */
    QPointF last_mean() const
    {
        return bucket.mean();
    }

private:
    /**
     * Adds the points up to the limit, if there are any. The sums are the function's own: in an object
     * they would go to memory and back at every point.
     */
    static Bucket fill(Bucket sums, PointScan& scan, double limit)
    {
        scan.visit_while([&sums, limit](const QPointF& next) {
            if (next.x() > limit)
                return false;
            sums.add(next);
            return true;
        });
        return sums;
    }

    const double interval;
    double boundary;
    Bucket bucket;
};
