#include "watch/file_tail.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
constexpr int PIECE = 65536;
constexpr int REMEMBERED = 64;  ///< bytes, by which a file is known again

qint64 nanoseconds(const timespec& time)
{
    return qint64(time.tv_sec) * 1000000000 + time.tv_nsec;
}

FileState state_from(const struct stat& status)
{
    FileState state;
    state.exists = S_ISREG(status.st_mode);
    state.identity = {status.st_dev, status.st_ino};
    state.size = status.st_size;
    state.written_ns = nanoseconds(status.st_mtim);
    state.written_ms = state.written_ns / 1000000;
    state.accessed_ns = nanoseconds(status.st_atim);
    state.owner = status.st_uid;
    return state;
}

/** Without moving the time of the last access, which only the owner of a file may ask for. */
int open_quietly(const QByteArray& path)
{
    constexpr int FLAGS = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
    const int file = ::open(path.constData(), FLAGS | O_NOATIME);
    return file < 0 && errno == EPERM ? ::open(path.constData(), FLAGS) : file;
}

QByteArray bytes_at(int file, qint64 position, int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    const ssize_t read = ::pread(file, bytes.data(), size_t(size), position);
    bytes.truncate(int(qMax<ssize_t>(read, 0)));
    return bytes;
}

class OpenFile
{
public:
    explicit OpenFile(const QByteArray& path) : number(open_quietly(path))
    {
    }
    ~OpenFile()
    {
        if (number >= 0)
            ::close(number);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    const int number;
};
}  // namespace

FileState state_of_file(const QByteArray& path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 ? state_from(status) : FileState();
}

FileTail::FileTail(QByteArray file_path) : path(std::move(file_path))
{
}

FileTail::News FileTail::look(const std::function<void()>& begin,
                              const std::function<void(const QByteArray&)>& take)
{
    const FileState seen = state_of_file(path);
    if (!seen.exists) {
        const bool was_there = state.exists;
        state.exists = false;  // moved or renamed, it is known again where it comes back
        return was_there ? News::Gone : News::None;
    }
    if (begun && seen.identity == state.identity && seen.size == position &&
        seen.written_ns == state.written_ns) {
        state = seen;
        return News::None;
    }
    const OpenFile file(path);
    struct stat status = {};
    if (file.number < 0 || ::fstat(file.number, &status) != 0)
        return News::None;  // the next look tries again
    const FileState now = state_from(status);
    const bool anew = !begun || !goes_on(file.number, now);
    if (anew) {
        begin();
        position = 0;
        last_bytes.clear();
        begun = true;
    }
    const qint64 before = position;
    state = now;
    read_on(file.number, take);
    return anew ? News::Anew : position > before ? News::Grown : News::None;
}

/** What was read last still stands where it stood. */
bool FileTail::goes_on(int file, const FileState& now) const
{
    return now.identity == state.identity && now.size >= position &&
           bytes_at(file, position - last_bytes.size(), last_bytes.size()) == last_bytes;
}

void FileTail::read_on(int file, const std::function<void(const QByteArray&)>& take)
{
    for (;;) {
        const QByteArray piece = bytes_at(file, position, PIECE);
        if (piece.isEmpty())
            return;
        position += piece.size();
        last_bytes = (last_bytes + piece).right(REMEMBERED);
        take(piece);
    }
}

void FileTail::rename(const QByteArray& new_path)
{
    path = new_path;
}
