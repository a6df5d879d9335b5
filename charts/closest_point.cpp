#include "charts/closest_point.h"

#include "charts/point_map.h"
#include "charts/point_sweep.h"
#include "charts/series.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace
{

constexpr int MIN_PIXEL = std::numeric_limits<int>::min();
constexpr int MAX_PIXEL = std::numeric_limits<int>::max();

/** In 64 bits, then single precision: what is equal there counts as equally near. */
float square_distance(qint64 dx, qint64 dy)
{
    // From a screen to an end of the pixel range each square takes 63 bits, and their sum 64.
    return static_cast<float>(quint64(dx) * quint64(dx) + quint64(dy) * quint64(dy));
}

/** The search along one curve. */
struct Search
{
    const Series* series;
    PointMap map;
    float nearest = std::numeric_limits<float>::infinity();  ///< square; only what is nearer counts
    const QPointF* best = nullptr;                           ///< the first of the nearest so far

    float distance(const QPointF& point, QPoint pixel) const
    {
        return square_distance(qint64(map.x.map(point.x())) - pixel.x(),
                               qint64(map.y.map(point.y())) - pixel.y());
    }

    void go_on(const PointRun& run, QPoint pixel);
};

/** Outside of these columns a point is too far in x alone, whatever y is. */
struct Columns
{
    Columns(float nearest, int column)
    {
        // Somewhat wider than need be: truncation to a pixel takes up to one. Positions beyond the
        // pixels get the last pixel: if that is in reach, none of them is too far.
        const double reach = std::sqrt(static_cast<double>(nearest)) + 2.0;
        if (column - reach > MIN_PIXEL)
            left = column - reach;
        if (column + reach < MAX_PIXEL)
            right = column + reach;
    }

    /** False for NaN, which has a pixel like everything else. */
    bool miss(double position) const
    {
        return position < left || position > right;
    }

    double left = -std::numeric_limits<double>::infinity();
    double right = std::numeric_limits<double>::infinity();
};

void Search::go_on(const PointRun& run, QPoint pixel)
{
    const PixelMap x_map = map.x;
    Columns columns(nearest, pixel.x());
    for_each_point(run.begin, run.end, [&](const QPointF& point) {
        if (columns.miss(x_map.position(point.x())))
            return;
        const float found = distance(point, pixel);
        if (found < nearest) {
            nearest = found;
            best = &point;
            columns = Columns(nearest, pixel.x());
        }
    });
}

/** The distance of one of its points: nothing farther counts. Of a near one, if they are in order. */
float guess(const Search& search, QPoint pixel)
{
    const int found = search.series->binary_search(search.series->unmap_x(pixel.x()));
    return search.distance(search.series->points.at(found < 0 ? ~found : found), pixel);
}

std::vector<Search> begin_searches(const QList<Series*>& series, QPoint pixel)
{
    std::vector<Search> searches;
    float nearest = std::numeric_limits<float>::infinity();
    for (const Series* const one : series) {
        if (one->points.isEmpty())
            continue;
        searches.push_back({one, {one->get_x_axis()->pixel_map(), one->get_y_axis()->pixel_map()}});
        nearest = std::min(nearest, guess(searches.back(), pixel));
    }

    // As near as that counts, too: an earlier point may be.
    for (Search& search : searches)
        search.nearest = std::nextafter(nearest, std::numeric_limits<float>::infinity());
    return searches;
}

/** Of equals the earliest one stands. */
ClosestPoint result_of(const std::vector<Search>& searches)
{
    ClosestPoint closest;
    float nearest = std::numeric_limits<float>::infinity();
    for (const Search& search : searches) {
        if (search.best != nullptr && search.nearest < nearest) {
            nearest = search.nearest;
            closest = {search.series, *search.best, search.series->map_point(*search.best)};
        }
    }
    return closest;
}

}  // namespace

ClosestPoint find_closest_point(const QList<Series*>& series, QPoint pixel)
{
    std::vector<Search> searches = begin_searches(series, pixel);
    QVector<const QList<QPointF>*> lists;
    for (const Search& search : searches)
        lists.append(&search.series->points);
    PointSweep sweep(lists);
    PointRun run{};
    while (sweep.next(run))
        searches[run.list].go_on(run, pixel);
    return result_of(searches);
}
