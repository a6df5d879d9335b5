#include "log/workers.h"

#include <QCalendar>

#include <cstdio>
#include <cstdlib>
#include <new>

namespace
{
int allocations = 0;
}

void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

/** Tells whether asking for the calendar makes it: as it is, or behind some workers with an argument. */
int main(int argc, char**)
{
    if (argc > 1)
        const Workers workers(1);
    allocations = 0;
    const QCalendar calendar;
    std::puts(allocations > 0 ? "made" : "there already");
    return calendar.isValid() ? 0 : 1;
}
