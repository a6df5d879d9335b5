#include "records/section.h"

void RowCount::add_step(const ClockStep& step)
{
    ++clock_steps;
    clock_steps_back += step.seconds < 0.0 ? 1 : 0;
    if (steps.size() < MOST_GAPS)
        steps << step;
}

double RowCount::rate() const
{
    const double seconds = last_seconds - first_seconds;
    return rows > 1 && seconds > 0.0 ? double(rows - 1) / seconds : 0.0;
}
