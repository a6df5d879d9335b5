#include "programs/common/output_file.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

namespace
{
constexpr int PIECE = 1 << 18;  // bytes
constexpr int MOST_FILES = 256;

// Plain memory that a signal handler may read: a name is never freed while it stands here.
std::atomic<char*> unfinished[MOST_FILES];

std::atomic<bool> ending{false};
std::atomic<int> opening{0};  // files that are being made at this moment
thread_local int opening_here = 0;

extern "C" void remove_unfinished_files(int signal_number)
{
    ending = true;
    // What this very thread is about to make it makes no more.
    while (opening > opening_here)
        ::sched_yield();
    for (std::atomic<char*>& name : unfinished)
        if (const char* path = name.load())
            ::unlink(path);
    std::signal(signal_number, SIG_DFL);
    ::raise(signal_number);
}

/** While one lives, a file is being made that a signal is to find. */
class Opening
{
public:
    Opening()
    {
        ++opening_here;
        ++opening;
        while (ending) {
            // The end is near, and no file is to come after it.
            --opening;
            ::pause();
            ++opening;
        }
    }
    ~Opening()
    {
        --opening;
        --opening_here;
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;
};

int note_unfinished(const QByteArray& path)
{
    char* const copy = ::strdup(path.constData());
    for (int i = 0; i < MOST_FILES; ++i) {
        char* nobody = nullptr;
        if (unfinished[i].compare_exchange_strong(nobody, copy))
            return i;
    }
    std::free(copy);
    return -1;
}

void forget_unfinished(int slot)
{
    if (slot >= 0)
        std::free(unfinished[slot].exchange(nullptr));
}

QString system_error()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/** False with errno. A full disk takes a part, and tells at the next try. */
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

/** A hidden name beside `path`, so that the rename stays within one file system. */
QString name_beside(const QString& path)
{
    const QFileInfo target(path);
    const QString unique = QUuid::createUuid().toString(QUuid::Id128).left(8);
    return target.dir().filePath(QString(".%1.%2").arg(target.fileName().left(200), unique));
}

/** Moves a file without putting it over another one, which even one made this moment is not. */
bool move_to_free_name(const QByteArray& from, const QByteArray& to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    // Not every file system knows that call; a link never replaces either.
    return errno == EINVAL && ::link(from.constData(), to.constData()) == 0 &&
           ::unlink(from.constData()) == 0;
}
}  // namespace

OutputFile::OutputFile(const QString& target, bool forced) : path(target), force(forced)
{
    // Room asked for is kept when the text is emptied for the next piece.
    pending.reserve(PIECE + PIECE / 4);
}

OutputFile::~OutputFile()
{
    if (!file.fileName().isEmpty())
        file.remove();
    forget_unfinished(slot);
}

bool OutputFile::fail(const QString& sentence)
{
    if (error_text.isEmpty())
        error_text = sentence;
    return false;
}

bool OutputFile::open()
{
    if (QFileInfo(path).isDir())
        return fail(QString("%1 is a folder; give another one with --to.").arg(path));
    if (!force && QFileInfo::exists(path))
        return fail(QString("%1 exists; add --force to replace it.").arg(path));
    const QString name = name_beside(path);
    const Opening being_made;
    slot = note_unfinished(QFile::encodeName(name));
    file.setFileName(name);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return true;
    const QString reason = file.errorString();
    file.setFileName(QString());
    return fail(
        QString("%1 cannot be written: %2. Choose another folder with --to.").arg(path, reason));
}

void OutputFile::write(const QByteArray& bytes)
{
    write(bytes.constData(), bytes.size());
}

void OutputFile::write(const char* bytes, int size)
{
    pending.append(bytes, size);
    if (pending.size() >= PIECE)
        flush();
}

bool OutputFile::flush()
{
    const bool written = error_text.isEmpty() && write_all(file.handle(), pending);
    pending.resize(0);
    return written || fail(QString("%1 cannot be written: %2. Make room or choose another folder "
                                   "with --to.")
                               .arg(path, system_error()));
}

void OutputFile::written_by_others(const QString& failure)
{
    if (!failure.isEmpty())
        fail(QString("%1 cannot be written: %2. Make room or choose another folder with --to.")
                 .arg(path, failure));
}

bool OutputFile::commit()
{
    if (!flush() || !error_text.isEmpty())
        return false;
    if (::fsync(file.handle()) != 0)
        return fail(QString("%1 cannot be written: %2.").arg(path, system_error()));
    file.close();
    const QByteArray from = QFile::encodeName(file.fileName());
    const QByteArray to = QFile::encodeName(path);
    const bool moved =
        force ? std::rename(from.constData(), to.constData()) == 0 : move_to_free_name(from, to);
    if (!moved)
        return fail(QString("%1 cannot be put in its place: %2.").arg(path, system_error()));
    file.setFileName(QString());
    return true;
}

QString OutputFile::temporary_path() const
{
    return file.fileName();
}

QString OutputFile::error() const
{
    return error_text;
}

void remove_unfinished_files_at_signals()
{
    for (const int signal_number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal_number, remove_unfinished_files);
}
