#include "charts/interval.h"

void Interval::clear()
{
    min = qInf();
    max = -qInf();
}

double Interval::size() const
{
    return max - min;
}

void Interval::include(double value)
{
    if (min > value)
        min = value;
    if (value > max)
        max = value;
}

void Interval::include(const Interval& other)
{
    include(other.min);
    include(other.max);
}
