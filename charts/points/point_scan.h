#pragma once

#include <QList>
#include <QPointF>

#include <algorithm>

using PointIterator = QList<QPointF>::const_iterator;

// What the walk below rests on. Where lists keep their points side by side it is a plain loop's loss.
static_assert(QT_VERSION < QT_VERSION_CHECK(6, 0, 0) && QTypeInfo<QPointF>::isLarge,
              "a QList<QPointF> is expected to keep every point in a node of its own");

/**
 * A walk over points, in order. A list keeps every point in a node of its own, and waiting for those
 * is most of a long scan: all but the first ones are fetched some way ahead of their use.
 */
class PointScan
{
public:
    PointScan(PointIterator begin, PointIterator new_end)
        : point(begin),
          last_fetch(new_end - std::min(NODES_AHEAD, static_cast<int>(new_end - begin))),
          end(new_end)
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

    PointIterator point;
    const PointIterator last_fetch;
    const PointIterator end;
};

/** Calls `visit` with each point, in order. */
template <typename Visit> void for_each_point(PointIterator begin, PointIterator end, Visit visit)
{
    PointScan(begin, end).visit_while([&visit](const QPointF& point) {
        visit(point);
        return true;
    });
}
