#pragma once

#include "programs/common/system_roots.h"

#include <QString>
#include <QVector>

#include <functional>
#include <sys/types.h>

/** A character device that a process has open. */
struct OpenDevice
{
    int descriptor = -1;
    QString path;            ///< as the system names it: "/dev/ttyUSB0", "/dev/pts/3 (deleted)"
    dev_t device = 0;        ///< major and minor number
    ino_t inode = 0;         ///< of the file behind the path
    dev_t filesystem = 0;    ///< that this inode is one of
    bool both_ways = false;  ///< open to read and to write
    int master_of = -1;      ///< number of the pseudo-terminal whose other end this is; -1 for none
};

/** What a process has open at one moment. */
struct OpenFiles
{
    /** Whether the other end of this pseudo-terminal is among them: "/dev/pts/3". */
    bool have_far_end_of(const QString& path) const;

    bool readable =
        false;      ///< false where the system lets nobody look, or there is no such process
    int count = 0;  ///< files of any kind; a process that is dying has none left
    QVector<OpenDevice> devices;
};

OpenFiles open_files_of(pid_t process, const SystemRoots& roots);

/** A plain file that a process has open to write. */
struct WrittenFile
{
    int descriptor = -1;
    QByteArray path;  ///< as the system names it: "/home/a/Pack_1.csv", with " (deleted)" if it is
    dev_t device = 0;
    ino_t inode = 0;
};

/** Those of a name that `is_wanted`; no other file is touched. */
QVector<WrittenFile> written_files_of(pid_t process,
                                      const std::function<bool(const QByteArray& path)>& is_wanted,
                                      const SystemRoots& roots);

/** Whether the process has this very file open under this number. */
bool has_open(pid_t process, int descriptor, dev_t device, ino_t inode, const SystemRoots& roots);

/** The numbers of all processes; empty where the system does not tell. */
QVector<pid_t> all_processes(const SystemRoots& roots);

/** "screen"; empty if there is no such process. */
QString name_of_process(pid_t process, const SystemRoots& roots);

/** When it was started, in the system's own ticks since its start; 0 if there is no such process. */
quint64 start_of_process(pid_t process, const SystemRoots& roots);

/** Number of the terminal that the process is controlled from; 0 for none. */
dev_t controlling_terminal_of(pid_t process, const SystemRoots& roots);

/** The letter of the system for what a process does: 'T' stopped, 't' held by a debugger; 0 unknown. */
char state_of_process(pid_t process, const SystemRoots& roots);

/** Whether the process has begun to end, and so lets nobody see any more what it has open. */
bool is_ending(pid_t process, const SystemRoots& roots);

/** Whether the process has a handler of its own for the signal. */
bool catches_signal(pid_t process, int signal, const SystemRoots& roots);
