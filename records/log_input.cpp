#include "records/log_input.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
const QByteArray UTF_8_MARK = "\xef\xbb\xbf";
const QByteArray WIDE_MARKS[] = {"\xff\xfe", "\xfe\xff", QByteArray("\0\0\xfe\xff", 4)};

std::atomic<qint64> all_bytes{0};

/** A descriptor for reading; -1 with errno. A FIFO without a writer does not hold it up. */
int open_quietly(const QByteArray& path)
{
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    const int handle = ::open(path.constData(), flags | O_NOATIME);
    // Only the file's owner may ask for that.
    return handle < 0 && errno == EPERM ? ::open(path.constData(), flags) : handle;
}
}  // namespace

bool LogInput::open_log(const QString& path)
{
    const int handle = open_quietly(QFile::encodeName(path));
    if (handle < 0)
        return refuse(QString::fromLocal8Bit(std::strerror(errno)));
    struct stat status = {};
    const bool regular = ::fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
    if (!regular || !file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(handle);
        return refuse(S_ISDIR(status.st_mode) ? "it is a folder" : "it is no ordinary file");
    }
    size_at_open = status.st_size;
    return open(QIODevice::ReadOnly | QIODevice::Text);
}

bool LogInput::refuse(const QString& reason)
{
    setErrorString(reason);
    return false;
}

bool LogInput::isSequential() const
{
    return true;
}

bool LogInput::atEnd() const
{
    return QIODevice::atEnd() && (too_long || read_so_far >= size_at_open || file.atEnd());
}

qint64 LogInput::bytes_of_all()
{
    return all_bytes;
}

bool LogInput::ends_with_line_end() const
{
    return last == '\n';
}

bool LogInput::ends_with_nul() const
{
    return last == '\0' && read_so_far > 0;
}

bool LogInput::line_too_long() const
{
    return too_long;
}

bool LogInput::has_carriage_returns() const
{
    return carriage_returns;
}

bool LogInput::begins_with_byte_order_mark() const
{
    return has_wide_characters() || first_bytes.startsWith(UTF_8_MARK);
}

bool LogInput::has_wide_characters() const
{
    return std::any_of(std::begin(WIDE_MARKS), std::end(WIDE_MARKS),
                       [this](const QByteArray& mark) { return first_bytes.startsWith(mark); });
}

bool LogInput::failed() const
{
    return read_failed;
}

qint64 LogInput::readData(char* data, qint64 most)
{
    const qint64 count = too_long ? 0 : file.read(data, qMin(most, size_at_open - read_so_far));
    if (count < 0) {
        read_failed = true;
        setErrorString(file.errorString());
    }
    if (count <= 0)
        return -1;
    if (read_so_far == 0)
        first_bytes = QByteArray(data, int(qMin(count, qint64(4))));
    const void* const line_end = ::memrchr(data, '\n', size_t(count));
    if (line_end != nullptr)
        line_begin = read_so_far + (static_cast<const char*>(line_end) - data) + 1;
    carriage_returns = carriage_returns || std::memchr(data, '\r', size_t(count)) != nullptr;
    read_so_far += count;
    all_bytes += count;
    last = data[count - 1];
    too_long = read_so_far - line_begin > LONGEST_LINE;
    return count;
}

qint64 LogInput::writeData(const char*, qint64)
{
    return -1;
}
