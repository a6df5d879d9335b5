#pragma once

#include "charts/points/point_map.h"

#include <QList>
#include <QPolygonF>

/** A curve's points, in order, and the axes that they are drawn through. */
struct MappedPoints
{
    const QList<QPointF>& points;
    PointMap map;
};

/**
 * The line of a curve in whole pixels, averaged in buckets: first point, means, last point. A curve
 * that is shorter than one bucket has all of its points. The NaN of an empty first bucket is mapped
 * like any mean and lies far outside of every device.
 *
 * @param interval width of the buckets in data units of x; 0 for every sample
 */
QPolygonF averaged_polyline(const MappedPoints& curve, double interval);
