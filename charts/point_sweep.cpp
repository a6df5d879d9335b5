#include "charts/point_sweep.h"

#include <algorithm>
#include <limits>

namespace
{

/** Points between two looks at an address, at least. */
constexpr std::size_t LEAST_STEP = 32;

quintptr address(PointIterator point)
{
    return reinterpret_cast<quintptr>(&*point);
}

bool is_over(const PointRun& run)
{
    return run.begin == run.end;
}

bool begins_higher(const PointRun& a, const PointRun& b)
{
    return address(a.begin) > address(b.begin);
}

}  // namespace

PointSweep::PointSweep(const QVector<const QList<QPointF>*>& lists)
{
    waiting.reserve(lists.size());
    for (int i = 0; i < lists.size(); ++i) {
        if (!lists.at(i)->isEmpty())
            waiting.push_back({i, lists.at(i)->constBegin(), lists.at(i)->constEnd()});
    }
    std::sort(waiting.begin(), waiting.end(), begins_higher);
}

bool PointSweep::next(PointRun& run)
{
    do {
        while (turn < begun.size()) {
            PointRun& rest = begun[turn++];
            if (address(rest.begin) >= limit)
                continue;
            run = take_from(rest);
            return true;
        }
    } while (begin_window());
    return false;
}

/** It begins at the lowest of all next points. A list alone in it may go on until another one begins. */
bool PointSweep::begin_window()
{
    turn = 0;
    begun.erase(std::remove_if(begun.begin(), begun.end(), is_over), begun.end());
    if (begun.empty() && waiting.empty())
        return false;
    quintptr lowest = std::numeric_limits<quintptr>::max();
    for (const PointRun& rest : begun)
        lowest = std::min(lowest, address(rest.begin));
    if (!waiting.empty())
        lowest = std::min(lowest, address(waiting.back().begin));
    limit = lowest + WINDOW;
    for (; !waiting.empty() && address(waiting.back().begin) < limit; waiting.pop_back())
        begun.push_back(waiting.back());

    // However they lie: a list that goes on gives as many points as there are lists to look at.
    step = static_cast<int>(std::max(LEAST_STEP, begun.size()));
    if (begun.size() == 1)
        limit =
            waiting.empty() ? std::numeric_limits<quintptr>::max() : address(waiting.back().begin);
    return true;
}

/** Up to the limit, by steps; the whole rest if its last point lies below. */
PointRun PointSweep::take_from(PointRun& rest) const
{
    PointRun run = rest;
    if (address(rest.end - 1) >= limit) {
        run.end = run.begin;
        do {
            run.end += std::min(step, static_cast<int>(rest.end - run.end));
        } while (run.end != rest.end && address(run.end) < limit);
    }
    rest.begin = run.end;
    return run;
}
