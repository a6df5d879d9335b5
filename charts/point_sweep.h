#pragma once

#include "charts/point_scan.h"

#include <QVector>

#include <vector>

/** Some points of one of several lists, in order. */
struct PointRun
{
    int list;
    PointIterator begin;
    PointIterator end;
};

/**
 * Goes once through the points of several lists, in runs: each list in its own order, and all of them
 * as they lie in memory, as far as their own order allows.
 *
 * Stations that record at the same time lay their points side by side. List after list, all of that
 * memory would be brought in once for each of them; here each window of it serves all of them in turn.
 * Lists that lie apart are one run each.
 */
class PointSweep
{
public:
    /** Bytes of memory that stay close to the processor until every list has had its turn. */
    static constexpr quintptr WINDOW = 32 * 1024;

    /** The lists must outlive the sweep, unchanged. Empty ones have no run. */
    explicit PointSweep(const QVector<const QList<QPointF>*>& lists);

    /** The next run, which is never empty. False at the end. */
    bool next(PointRun& run);

private:
    /** False if no point is left. */
    bool begin_window();
    PointRun take_from(PointRun& rest) const;

    std::vector<PointRun> waiting;  ///< whole lists, those that begin lowest in memory last
    std::vector<PointRun> begun;    ///< what is left of the others
    std::size_t turn = 0;           ///< index in `begun` of the one to look at next
    quintptr limit = 0;             ///< where the present window ends
    int step = 0;                   ///< points between two looks at the limit
};
