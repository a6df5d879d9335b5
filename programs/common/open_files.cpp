#include "programs/common/open_files.h"

#include <QFile>

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace
{
// /dev/null and its like: every process has some, and none is a terminal.
constexpr unsigned MEMORY_DEVICES = 1;
// Among the flags of a process, as the kernel has it.
constexpr unsigned EXITING = 4;

using Folder = std::unique_ptr<DIR, int (*)(DIR*)>;

Folder open_folder(const QString& path)
{
    return Folder(::opendir(QFile::encodeName(path).constData()), ::closedir);
}

QString folder_of(pid_t process, const SystemRoots& roots)
{
    return QString("%1/%2").arg(roots.proc).arg(process);
}

/** Number behind the name of an entry of a folder; -1 for other names. */
int number_of(const dirent& entry)
{
    bool ok = false;
    const int number = QByteArray(entry.d_name).toInt(&ok);
    return ok ? number : -1;
}

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** The word behind "flags:" in the system's own lines of text; empty if there is none. */
QByteArray value_in(const QByteArray& text, const QByteArray& key)
{
    for (const QByteArray& line : text.split('\n'))
        if (line.startsWith(key))
            return line.mid(key.size()).trimmed();
    return {};
}

int flags_of(const QString& process_folder, int descriptor)
{
    const QByteArray text = contents(QString("%1/fdinfo/%2").arg(process_folder).arg(descriptor));
    return value_in(text, "flags:").toInt(nullptr, 8);
}

void read_details(OpenDevice& device, const QString& process_folder)
{
    const QByteArray text =
        contents(QString("%1/fdinfo/%2").arg(process_folder).arg(device.descriptor));
    device.both_ways = (value_in(text, "flags:").toInt(nullptr, 8) & O_ACCMODE) == O_RDWR;
    bool is_master = false;
    const int number = value_in(text, "tty-index:").toInt(&is_master);
    device.master_of = is_master ? number : -1;
}

/** What stands behind the name in the process's "stat": from the state letter on. */
QList<QByteArray> columns_of(pid_t process, const SystemRoots& roots)
{
    const QByteArray text = contents(folder_of(process, roots) + "/stat");
    // The name stands in brackets and may hold brackets itself.
    return text.mid(text.lastIndexOf(')') + 2).split(' ');
}
}  // namespace

bool OpenFiles::have_far_end_of(const QString& path) const
{
    return std::any_of(devices.begin(), devices.end(), [&path](const OpenDevice& file) {
        return file.master_of >= 0 && path == QString("/dev/pts/%1").arg(file.master_of);
    });
}

OpenFiles open_files_of(pid_t process, const SystemRoots& roots)
{
    OpenFiles files;
    const QString process_folder = folder_of(process, roots);
    const Folder folder = open_folder(process_folder + "/fd");
    if (folder == nullptr)
        return files;
    files.readable = true;
    while (const dirent* const entry = ::readdir(folder.get())) {
        const int descriptor = number_of(*entry);
        if (descriptor < 0)
            continue;
        ++files.count;
        struct stat status = {};
        if (::fstatat(::dirfd(folder.get()), entry->d_name, &status, 0) != 0 ||
            !S_ISCHR(status.st_mode) || major(status.st_rdev) == MEMORY_DEVICES)
            continue;
        char path[4096];
        const ssize_t length =
            ::readlinkat(::dirfd(folder.get()), entry->d_name, path, sizeof path);
        OpenDevice device;
        device.descriptor = descriptor;
        device.path = QFile::decodeName(QByteArray(path, int(std::max<ssize_t>(length, 0))));
        device.device = status.st_rdev;
        device.inode = status.st_ino;
        device.filesystem = status.st_dev;
        read_details(device, process_folder);
        files.devices << device;
    }
    return files;
}

QVector<WrittenFile> written_files_of(pid_t process,
                                      const std::function<bool(const QByteArray& path)>& is_wanted,
                                      const SystemRoots& roots)
{
    QVector<WrittenFile> files;
    const QString process_folder = folder_of(process, roots);
    const Folder folder = open_folder(process_folder + "/fd");
    if (folder == nullptr)
        return files;
    while (const dirent* const entry = ::readdir(folder.get())) {
        WrittenFile file;
        file.descriptor = number_of(*entry);
        char path[4096];
        const ssize_t length =
            ::readlinkat(::dirfd(folder.get()), entry->d_name, path, sizeof path);
        file.path = QByteArray(path, int(std::max<ssize_t>(length, 0)));
        // By the name first: to ask for a file on a network that has gone may take for ever.
        if (!is_wanted(file.path))
            continue;
        struct stat status = {};
        if (::fstatat(::dirfd(folder.get()), entry->d_name, &status, 0) != 0 ||
            !S_ISREG(status.st_mode) ||
            (flags_of(process_folder, file.descriptor) & O_ACCMODE) == O_RDONLY)
            continue;
        file.device = status.st_dev;
        file.inode = status.st_ino;
        files << file;
    }
    return files;
}

bool has_open(pid_t process, int descriptor, dev_t device, ino_t inode, const SystemRoots& roots)
{
    struct stat status = {};
    const QString path = QString("%1/fd/%2").arg(folder_of(process, roots)).arg(descriptor);
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && status.st_dev == device &&
           status.st_ino == inode;
}

QVector<pid_t> all_processes(const SystemRoots& roots)
{
    QVector<pid_t> processes;
    const Folder folder = open_folder(roots.proc);
    if (folder == nullptr)
        return processes;
    while (const dirent* const entry = ::readdir(folder.get()))
        if (number_of(*entry) > 0)
            processes << number_of(*entry);
    return processes;
}

QString name_of_process(pid_t process, const SystemRoots& roots)
{
    return QString::fromLocal8Bit(contents(folder_of(process, roots) + "/comm")).trimmed();
}

quint64 start_of_process(pid_t process, const SystemRoots& roots)
{
    return columns_of(process, roots).value(19).toULongLong();
}

dev_t controlling_terminal_of(pid_t process, const SystemRoots& roots)
{
    const unsigned number = unsigned(columns_of(process, roots).value(4).toInt());
    // In the form of old times: bits 8 to 15 are the major number, the others the minor one.
    return number == 0
               ? 0
               : makedev((number >> 8) & 0xfff, (number & 0xff) | ((number >> 12) & 0xfff00));
}

char state_of_process(pid_t process, const SystemRoots& roots)
{
    return columns_of(process, roots).first().append('\0').at(0);
}

bool is_ending(pid_t process, const SystemRoots& roots)
{
    return (columns_of(process, roots).value(6).toUInt() & EXITING) != 0;
}

bool catches_signal(pid_t process, int signal, const SystemRoots& roots)
{
    const QByteArray mask = value_in(contents(folder_of(process, roots) + "/status"), "SigCgt:");
    return (mask.toULongLong(nullptr, 16) >> (signal - 1) & 1) != 0;
}
