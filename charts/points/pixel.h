#pragma once

#include <cmath>
#include <limits>

/**
 * Truncates toward zero to a pixel coordinate. What no int can hold ends at the nearest one, and NaN
 * at the most negative: every double gives a coordinate, and far away stays far away.
 */
inline int to_pixel(double value)
{
    constexpr double beyond_int = 2147483648.0;
    if (std::abs(value) < beyond_int)
        return static_cast<int>(value);
    return value > 0.0 ? std::numeric_limits<int>::max() : std::numeric_limits<int>::min();
}

/** An axis's mapping as a value of its own: in a loop over points it stays in registers. */
struct PixelMap
{
    double scale;      ///< pixels per data unit
    double minimum;    ///< data value at the origin
    double direction;  ///< +1 or -1
    double origin;     ///< pixels

    /** Not yet truncated. */
    double position(double value) const
    {
        return scale * ((value - minimum) * direction) + origin;
    }

    int map(double value) const
    {
        return to_pixel(position(value));
    }
};
