#pragma once

#include "charts/pixel.h"

#include <QPointF>

/** Both axes as values: the address of such a local goes nowhere, so that no store makes it stale. */
struct PointMap
{
    PixelMap x;
    PixelMap y;

    /** In whole pixels. */
    QPointF map(const QPointF& point) const
    {
        return QPointF(x.map(point.x()), y.map(point.y()));
    }
};
