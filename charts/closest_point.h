#pragma once

#include <QList>
#include <QPoint>
#include <QPointF>

class Series;

/** The point of all curves that lies nearest to a pixel; `series` is null when there is none. */
struct ClosestPoint
{
    const Series* series = nullptr;
    QPointF point;  ///< data units
    QPoint pixel;
};

/**
 * Scans every point of every series in the layout of the latest paint. Of equals the first one stands;
 * points outside the plot area count too.
 */
ClosestPoint find_closest_point(const QList<Series*>& series, QPoint pixel);
