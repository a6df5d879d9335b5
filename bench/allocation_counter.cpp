#include "allocation_counter.h"

#include <atomic>

// The allocator of the C library behind its public names, which this file takes for itself.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* block, size_t size);

namespace
{

std::atomic<size_t> allocation_count{0};
std::atomic<size_t> allocated_bytes{0};

[[maybe_unused]] void note(size_t bytes)
{
    allocation_count.fetch_add(1, std::memory_order_relaxed);
    allocated_bytes.fetch_add(bytes, std::memory_order_relaxed);
}

}  // namespace

#ifndef __SANITIZE_ADDRESS__  // whose own allocator must stay: there the counts are zero

extern "C" void* malloc(size_t size)
{
    note(size);
    return __libc_malloc(size);
}

extern "C" void* calloc(size_t count, size_t size)
{
    note(count * size);
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* block, size_t size)
{
    note(size);
    return __libc_realloc(block, size);
}

#endif

Allocations allocations()
{
    return {allocation_count.load(), allocated_bytes.load()};
}
