#pragma once

#include <QByteArray>
#include <QDateTime>

#include <functional>
#include <sys/types.h>

/** Which file it is, whatever its name. */
struct FileIdentity
{
    dev_t device = 0;
    ino_t inode = 0;

    bool operator==(const FileIdentity& other) const
    {
        return device == other.device && inode == other.inode;
    }
    bool operator<(const FileIdentity& other) const
    {
        return device != other.device ? device < other.device : inode < other.inode;
    }
};

/** What the system tells of a file. */
struct FileState
{
    bool exists = false;  ///< as a plain file
    FileIdentity identity;
    qint64 size = 0;
    qint64 written_ms = 0;   ///< since 1970 UTC
    qint64 written_ns = 0;   ///< the same in full
    qint64 accessed_ns = 0;  ///< last read, where the system keeps that
    uid_t owner = 0;
};

FileState state_of_file(const QByteArray& path);

/**
 * Reads what is added to a file. Opens it for each look alone, read only and without a trace where the
 * system allows that.
 */
class FileTail
{
public:
    enum class News
    {
        None,
        Grown,
        Anew,  ///< another file, or cut, or written over: all of it is handed out from its start
        Gone
    };

    explicit FileTail(QByteArray file_path);

    /** Hands what is new to `take`, in pieces; before it is Anew, `begin` is called. */
    News look(const std::function<void()>& begin,
              const std::function<void(const QByteArray&)>& take);

    /** The same file under another name. */
    void rename(const QByteArray& new_path);

    FileState state;  ///< at the last look

private:
    bool goes_on(int file, const FileState& now) const;
    void read_on(int file, const std::function<void(const QByteArray&)>& take);

    QByteArray path;
    qint64 position = 0;
    QByteArray last_bytes;  ///< before the position
    bool begun = false;
};
