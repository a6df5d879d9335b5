#include "guard/lock_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace
{
const QString PREFIX = "LCK..";
// Files bear the time of the system's last tick, which may lie before the one asked for.
constexpr int CLOCK_STEP_MS = 100;

/** The file's first line is the number of the process. Anybody may make such a file: only our own count. */
bool is_of(pid_t process, const QFileInfo& lock)
{
    if (lock.ownerId() != ::geteuid())
        return false;
    QFile file(lock.filePath());
    return file.open(QIODevice::ReadOnly) && file.readLine(32).trimmed().toLongLong() == process;
}

/** Not so after the line was pulled and another has got its name. */
bool is_older(const QString& path, const QFileInfo& lock)
{
    return QFileInfo(path).metadataChangeTime() <= lock.lastModified();
}

/** "pts_3" is the lock of pts/3, "tty_x" may be that of tty_x. */
QStringList paths_for(const QString& name)
{
    return {"/dev/" + name, "/dev/" + QString(name).replace('_', '/')};
}
}  // namespace

QStringList lock_folders()
{
    return {"/var/lock", "/etc/locks",        "/var/spool/locks", "/tmp",
            "/var/tmp",  "/var/lock/lockdev", "/run/lock"};
}

QVector<SerialLine> lines_locked_by(pid_t process, const QDateTime& start,
                                    const SerialLines& present, const QStringList& folders)
{
    QVector<SerialLine> lines;
    for (const QString& folder : folders) {
        const QFileInfoList locks = QDir(folder).entryInfoList({PREFIX + "*"}, QDir::Files);
        for (const QFileInfo& lock : locks) {
            if (lock.lastModified() < start.addMSecs(-CLOCK_STEP_MS) || !is_of(process, lock))
                continue;
            for (const QString& path : paths_for(lock.fileName().mid(PREFIX.size()))) {
                const std::optional<SerialLine> line = present.at(path);
                if (line.has_value() && !lines.contains(*line) && is_older(path, lock))
                    lines << *line;
            }
        }
    }
    return lines;
}
