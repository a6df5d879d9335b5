#include "records/cycle.h"

#include <cmath>

// Welford's way: one pass, and no digits lost where the spread is small beside the mean.
void Resistance::add(double milliohms)
{
    lowest = count == 0 ? milliohms : qMin(lowest, milliohms);
    highest = count == 0 ? milliohms : qMax(highest, milliohms);
    ++count;
    const double before = milliohms - mean;
    mean += before / double(count);
    squares += before * (milliohms - mean);
    spread = count > 1 ? std::sqrt(squares / double(count - 1)) : 0.0;
}
