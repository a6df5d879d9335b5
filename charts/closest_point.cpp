#include "charts/closest_point.h"

#include "charts/points/pixel.h"
#include "charts/points/point_scan.h"
#include "charts/series.h"

#include <limits>

namespace
{

/** In 64 bits, then single precision: what is equal there counts as equally near. */
float square_distance(qint64 dx, qint64 dy)
{
    // From a screen to an end of the pixel range each square takes 63 bits, and their sum 64.
    return static_cast<float>(quint64(dx) * quint64(dx) + quint64(dy) * quint64(dy));
}

/** The first of a curve's nearest points, if it is nearer than `nearest`, which is then its distance. */
const QPointF* find_nearer(const Series& series, QPoint pixel, float& nearest)
{
    const PixelMap x_map = series.get_x_axis()->pixel_map();
    const PixelMap y_map = series.get_y_axis()->pixel_map();
    const QPointF* best = nullptr;
    for_each_point(series.points.constBegin(), series.points.constEnd(), [&](const QPointF& point) {
        const qint64 dx = qint64(x_map.map(point.x())) - pixel.x();
        // Too far in x alone: whatever y is, it need not be mapped.
        if (square_distance(dx, 0) >= nearest)
            return;
        const qint64 dy = qint64(y_map.map(point.y())) - pixel.y();
        const float found = square_distance(dx, dy);
        if (found < nearest) {
            nearest = found;
            best = &point;
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
