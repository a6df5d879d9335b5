#pragma once

#include <cstddef>

/** What the whole process has asked of the heap so far, the toolkit included. */
struct Allocations
{
    size_t count;
    size_t bytes;
};

Allocations allocations();
