#include "records/log_file.h"

int LogFile::repeated_sections() const
{
    int repeated = 0;
    for (int i = 1; i < sections.size(); ++i)
        if (sections[i].kind == sections[i - 1].kind &&
            sections[i].number == sections[i - 1].number)
            ++repeated;
    return repeated;
}

double LogFile::amp_hours() const
{
    double sum = 0.0;
    for (const Cycle& cycle : cycles)
        sum += cycle.amp_hours;
    return sum;
}
