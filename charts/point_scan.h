#pragma once

#include <QList>
#include <QPointF>

#include <algorithm>

/**
 * A walk over points, in order. A list keeps every point in a node of its own, and waiting for those
 * is most of a long scan: they are fetched some way ahead of their use.
 */
class PointScan
{
public:
    explicit PointScan(const QList<QPointF>& points)
        : point(points.constBegin()),
          last_fetch(points.constEnd() - std::min(NODES_AHEAD, points.size())),
          end(points.constEnd())
    {
    }

    bool at_end() const
    {
        return point == end;
    }

    const QPointF& next()
    {
        return *point++;
    }

    /** Calls `visit` with each further point as long as it returns true; a refused one is next. */
    template <typename Visit> void visit_while(Visit visit)
    {
        for (; point < last_fetch; ++point) {
            __builtin_prefetch(&point[NODES_AHEAD]);
            if (!visit(*point))
                return;
        }
        for (; point != end; ++point) {
            if (!visit(*point))
                return;
        }
    }

private:
    static constexpr int NODES_AHEAD = 48;

    QList<QPointF>::const_iterator point;
    const QList<QPointF>::const_iterator last_fetch;
    const QList<QPointF>::const_iterator end;
};

/** Calls `visit` with each point, in order. */
template <typename Visit> void for_each_point(const QList<QPointF>& points, Visit visit)
{
    PointScan(points).visit_while([&visit](const QPointF& point) {
        visit(point);
        return true;
    });
}
