#pragma once

#include <limits>

/** Truncates toward zero; what lies beyond an int becomes the nearest int, NaN becomes 0. */
inline int truncated_int(double value)
{
    if (value != value)
        return 0;
    if (value >= double(std::numeric_limits<int>::max()))
        return std::numeric_limits<int>::max();
    if (value <= double(std::numeric_limits<int>::min()))
        return std::numeric_limits<int>::min();
    return static_cast<int>(value);
}
