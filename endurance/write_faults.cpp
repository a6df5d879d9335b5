#include "write_faults.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace
{
WriteFault present;
int counted = 0;
int refused_by_system = 0;

QByteArray path_of(int file)
{
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
    char path[4096];
    const ssize_t length = ::readlink(link, path, sizeof path);
    return QByteArray(path, int(length < 0 ? 0 : length));
}

bool fits(const QByteArray& path)
{
    return path.contains(present.path) &&
           (present.not_path.isEmpty() || !path.contains(present.not_path));
}

bool is_meant(int file)
{
    return !present.path.isEmpty() && !present.opening && file > STDERR_FILENO &&
           fits(path_of(file));
}

bool is_meant_to_open(const char* path, int flags)
{
    return !present.path.isEmpty() && present.opening && (flags & O_ACCMODE) != O_RDONLY &&
           fits(path);
}

bool is_due()
{
    ++counted;
    return counted >= present.first && counted - present.first < present.count;
}

ssize_t really_write(int file, const void* bytes, size_t size)
{
    const ssize_t written = ::syscall(SYS_write, file, bytes, size);
    refused_by_system += written < ssize_t(size) ? 1 : 0;
    return written;
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

int WriteFaults::refused()
{
    return refused_by_system;
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the system has reserved names.
extern "C" ssize_t write(int file, const void* bytes, size_t size)
{
    if (!is_meant(file) || !is_due())
        return really_write(file, bytes, size);
    if (present.half && counted == present.first && size > 1)
        return really_write(file, bytes, size / 2);
    errno = present.half ? ENOSPC : present.error;
    return -1;
}

// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): the system has reserved names.
extern "C" int open64(const char* path, int flags, ...)
{
    va_list more;
    va_start(more, flags);
    const int mode = va_arg(more, int);
    va_end(more);
    if (!is_meant_to_open(path, flags) || !is_due())
        return int(::syscall(SYS_openat, AT_FDCWD, path, flags | O_LARGEFILE, mode));
    errno = present.error;
    return -1;
}

/** The short ways of copying within the kernel: refused, so that each copy is written. */
extern "C" ssize_t sendfile64(int, int, off64_t*, size_t)
{
    errno = EINVAL;
    return -1;
}
