#include "log/quiet_library.h"

#include <cstdio>
#include <mutex>

namespace
{
std::mutex mutex;
int quiet_ones = 0;
std::FILE* loud = nullptr;

/** Open as long as the program runs: somebody may still be printing into it. */
std::FILE* nowhere()
{
    static std::FILE* const stream = std::fopen("/dev/null", "w");
    return stream;
}
}  // namespace

QuietLibrary::QuietLibrary()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (++quiet_ones > 1 || nowhere() == nullptr)
        return;
    loud = stderr;
    stderr = nowhere();
}

QuietLibrary::~QuietLibrary()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (--quiet_ones == 0 && loud != nullptr)
        stderr = loud;
}
