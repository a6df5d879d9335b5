#include "write_faults.h"

#include <cerrno>
#include <cstdio>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace
{
WriteFault present;
int counted = 0;

QByteArray path_of(int file)
{
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    char path[4096];
    const ssize_t length = ::readlink(link, path, sizeof path);
    return QByteArray(path, int(length < 0 ? 0 : length));
}

bool is_meant(int file)
{
    if (present.path.isEmpty() || file <= STDERR_FILENO)
        return false;
    const QByteArray path = path_of(file);
    return path.contains(present.path) &&
           (present.not_path.isEmpty() || !path.contains(present.not_path));
}

bool is_due()
{
    ++counted;
    return counted >= present.first && counted - present.first < present.count;
}

ssize_t really_write(int file, const void* bytes, size_t size)
{
    return ::syscall(SYS_write, file, bytes, size);
}
}  // namespace

void WriteFaults::set(const WriteFault& fault)
{
    present = fault;
    counted = 0;
}

void WriteFaults::clear()
{
    set(WriteFault());
}

int WriteFaults::writes()
{
    return counted;
}

extern "C" ssize_t write(int file, const void* bytes, size_t size)
{
    if (!is_meant(file) || !is_due())
        return really_write(file, bytes, size);
    if (present.half && counted == present.first && size > 1)
        return really_write(file, bytes, size / 2);
    errno = present.half ? ENOSPC : present.error;
    return -1;
}

/** The short ways of copying within the kernel: refused, so that each copy is written. */
extern "C" ssize_t sendfile64(int, int, off64_t*, size_t)
{
    errno = EINVAL;
    return -1;
}
