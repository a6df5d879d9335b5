#pragma once

#include "charts/series.h"

#include <QVector>

using Points = QVector<QPointF>;

Q_DECLARE_METATYPE(Points)

/** Axes on which a data unit is 100 pixels: x from 0 at 50, y from 0 at 450 upward. */
struct PlainAxes
{
    PlainAxes()
    {
        x.origin = 50;
        x.length = 1000;
        x.range.include(0.0);
        x.range.include(10.0);
        y.origin = 450;
        y.length = 400;
        y.range.include(0.0);
        y.range.include(4.0);
    }

    Axis x{BOTTOM};
    Axis y{LEFT};
};

inline void fill(Series& series, const Points& points)
{
    for (const QPointF& point : points)
        series.add(point.x(), point.y());
}
