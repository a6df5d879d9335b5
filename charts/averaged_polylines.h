#pragma once

#include <QList>
#include <QPolygonF>
#include <QVector>

class Series;

/**
 * The polylines of curves whose points are averaged in buckets: first point, means, last point, in
 * whole pixels. The NaN of an empty first bucket is mapped like any mean and lies far outside of the
 * clip rectangle.
 *
 * @param curves that averaging reduces, by `Series::is_reduced`
 * @param interval width of the buckets in data units of x
 */
QVector<QPolygonF> averaged_polylines(const QList<const Series*>& curves, double interval);
