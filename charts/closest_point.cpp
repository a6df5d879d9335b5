#include "charts/closest_point.h"

#include "charts/point_scan.h"
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
}  // namespace

ClosestPoint find_closest_point(const QList<Series*>& series, QPoint pixel)
{
    ClosestPoint closest;
    float nearest = std::numeric_limits<float>::infinity();
    for (const Series* one : series) {
        if (one->points.isEmpty())
            continue;
        const PixelMap x_map = one->get_x_axis()->pixel_map();
        const PixelMap y_map = one->get_y_axis()->pixel_map();
        const QPointF* best = nullptr;
        for_each_point(one->points, [&](const QPointF& point) {
            const qint64 dx = qint64(x_map.map(point.x())) - pixel.x();
            // Too far in x alone, whatever y is.
            if (square_distance(dx, 0) >= nearest)
                return;
            const qint64 dy = qint64(y_map.map(point.y())) - pixel.y();
            const float distance = square_distance(dx, dy);
            if (distance < nearest) {
                nearest = distance;
                best = &point;
            }
        });
        if (best != nullptr)
            closest = {one, *best, one->map_point(*best)};
    }
    return closest;
}
