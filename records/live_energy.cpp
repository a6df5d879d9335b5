#include "records/live_energy.h"

#include <cmath>

void LiveEnergy::add(double amp_hours, double volts)
{
    sum += volts * (amp_hours - amp_hours_before);
    if (!empty)
        changes += std::fabs(volts - volts_before);
    amp_hours_before = amp_hours;
    volts_before = volts;
    empty = false;
}

double LiveEnergy::error_bound() const
{
    constexpr double HALF_A_DIGIT = 0.0005;  // amp-hours
    return HALF_A_DIGIT * (volts_before + changes);
}
