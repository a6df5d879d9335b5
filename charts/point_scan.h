#pragma once

#include <QList>
#include <QPointF>

#include <algorithm>

/**
 * Calls `visit` with each point, in order. A list keeps every point in a node of its own, and waiting
 * for those is most of a long scan: they are fetched some way ahead of their use.
 */
template <typename Visit> void for_each_point(const QList<QPointF>& points, Visit visit)
{
    constexpr int nodes_ahead = 48;
    const auto end = points.constEnd();
    const auto last_fetch = end - std::min(nodes_ahead, points.size());
    auto point = points.constBegin();
    for (; point != last_fetch; ++point) {
        __builtin_prefetch(&point[nodes_ahead]);
        visit(*point);
    }
    for (; point != end; ++point)
        visit(*point);
}
