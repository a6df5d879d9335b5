#include "records/section.h"

double RowCount::rate() const
{
    const double seconds = last_seconds - first_seconds;
    return rows > 1 && seconds > 0.0 ? double(rows - 1) / seconds : 0.0;
}
