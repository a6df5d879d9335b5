#pragma once

#include "charts/points/pixel.h"

#include <QPointF>

/** Both axes as values. A loop over points takes a copy of its own, which no store can make stale. */
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
