#pragma once

#include <QtGlobal>
#include <QtNumeric>

/** A growing minimum/maximum pair. An empty one has `min` above `max`: it starts as +inf .. -inf. */
class Interval
{
public:
    void clear();

    double size() const;

    /** NaN changes nothing. */
    void include(double value);

    /** An empty interval has infinite ends, which are included like any value. */
    void include(const Interval& other);

    double min = qInf();
    double max = -qInf();
};
