#include "simulator/terminals.h"

namespace
{
constexpr long BILLION = 1000000000;
}  // namespace

Terminals open_terminals(int count)
{
    Terminals terminals;
    for (int i = 0; i < count; ++i) {
        terminals.push_back(std::make_unique<PseudoTerminal>());
        QString error;
        if (!terminals.back()->open(error))
            qFatal("%s", qPrintable(error));
    }
    return terminals;
}

QStringList port_names(const Terminals& terminals)
{
    QStringList names;
    for (const auto& terminal : terminals)
        names += terminal->port_name();
    return names;
}

Beat::Beat()
{
    ::clock_gettime(CLOCK_MONOTONIC, &next);
}

void Beat::wait(long nanoseconds)
{
    timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    if (now.tv_sec - next.tv_sec > 1)
        next = now;
    next.tv_nsec += nanoseconds;
    next.tv_sec += next.tv_nsec / BILLION;
    next.tv_nsec %= BILLION;
    ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
}
