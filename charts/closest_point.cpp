#include "charts/closest_point.h"

#include "charts/points/pixel.h"
#include "charts/points/point_scan.h"
#include "charts/series.h"

#include <cmath>
#include <limits>

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

/** The first of a curve's nearest points, if it is nearer than `nearest`, which is then its distance. */
const QPointF* find_nearer(const Series& series, QPoint pixel, float& nearest)
{
    const PixelMap x_map = series.get_x_axis()->pixel_map();
    const PixelMap y_map = series.get_y_axis()->pixel_map();
    const QPointF* best = nullptr;
    Columns columns(nearest, pixel.x());
    for_each_point(series.points.constBegin(), series.points.constEnd(), [&](const QPointF& point) {
        const double column = x_map.position(point.x());
        if (columns.miss(column))
            return;
        const float found = square_distance(qint64(to_pixel(column)) - pixel.x(),
                                            qint64(y_map.map(point.y())) - pixel.y());
        if (found < nearest) {
            nearest = found;
            best = &point;
            columns = Columns(nearest, pixel.x());
        }
    });
    return best;
}

}  // namespace

ClosestPoint find_closest_point(const QList<Series*>& series, QPoint pixel)
{
    ClosestPoint closest;
    float nearest = std::numeric_limits<float>::infinity();
    for (const Series* const one : series) {
        if (one->points.isEmpty())
            continue;
        const QPointF* const found = find_nearer(*one, pixel, nearest);
        if (found != nullptr)
            closest = {one, *found, one->map_point(*found)};
    }
    return closest;
}
