#include "records/line_cutter.h"

void LineCutter::keep(const char* begin, int size)
{
    rest.append(begin, qMin(size, LONGEST_LINE - rest.size()));
}
