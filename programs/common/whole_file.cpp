#include "programs/common/whole_file.h"

#include <QFile>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr mode_t ORDINARY = 0666;

/** On the disk, not merely on its way: what is renamed before it is there may be empty after a power cut. */
bool put_on_disk(int handle, const QByteArray& content)
{
    const bool there = write_all(handle, content) && ::fsync(handle) == 0;
    const int reason = errno;
    const bool closed = ::close(handle) == 0;
    if (!there)
        errno = reason;
    return there && closed;
}
}  // namespace

bool write_all(int handle, const QByteArray& bytes)
{
    const char* at = bytes.constData();
    const char* const end = at + bytes.size();
    while (at < end) {
        const ssize_t count = ::write(handle, at, size_t(end - at));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        at += count;
    }
    return true;
}

bool replace_file(const QString& path, const QByteArray& content)
{
    const QByteArray place = QFile::encodeName(path);
    const QByteArray beside = place + ".new";
    const int handle =
        ::open(beside.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, ORDINARY);
    if (handle < 0)
        return false;
    if (put_on_disk(handle, content) && ::rename(beside.constData(), place.constData()) == 0)
        return true;
    const int reason = errno;
    ::unlink(beside.constData());
    errno = reason;
    return false;
}
