#include "doctor/processes.h"

#include <QFileInfo>

#include <algorithm>
#include <unistd.h>

Processes::Processes(const FileView& files) : view(files)
{
    const QStringList entries = view.entries("/proc");
    for (const QString& entry : entries)
        if (entry.toInt() > 0 && entry.toInt() != int(::getpid()))
            read_process(entry);
}

void Processes::read_process(const QString& pid)
{
    const SeenProcess process = {pid.toInt(), program_of(pid)};
    all << process;
    const QString folder = "/proc/" + pid + "/fd";
    QStringList devices;
    const QStringList descriptors = view.entries(folder);
    for (const QString& descriptor : descriptors)
        devices << view.link(folder + "/" + descriptor);
    devices.removeDuplicates();
    const bool makes_terminals = devices.contains("/dev/ptmx") || devices.contains("/dev/pts/ptmx");
    for (const QString& device : qAsConst(devices))
        if (device.startsWith("/dev/") && !(makes_terminals && device.startsWith("/dev/pts/")))
            holders[device] << process;
}

/** By the command, as the kernel's own name for it ends after fifteen characters. */
QString Processes::program_of(const QString& pid) const
{
    const QString command = view.text("/proc/" + pid + "/cmdline").section(QChar(0), 0, 0);
    return command.isEmpty() ? view.value("/proc/" + pid + "/comm") : QFileInfo(command).fileName();
}

QList<SeenProcess> Processes::of(const QString& program, bool own) const
{
    QList<SeenProcess> found;
    for (const SeenProcess& process : all) {
        const QFileInfo folder(view.place(QString("/proc/%1").arg(process.pid)));
        if (process.program == program && (!own || folder.ownerId() == ::getuid()))
            found << process;
    }
    return found;
}

QList<SeenProcess> Processes::holders_of(const QString& device) const
{
    const QList<SeenProcess> found = holders.value(device);
    return found.isEmpty() ? locker_of(device) : found;
}

/** What a process of another user holds is not shown; its lock file tells, if that process lives. */
QList<SeenProcess> Processes::locker_of(const QString& device) const
{
    const QString name = QString(device).remove("/dev/").replace('/', '_');
    const int pid = view.text("/run/lock/LCK.." + name).section('\n', 0, 0).trimmed().toInt();
    for (const SeenProcess& process : all)
        if (process.pid == pid)
            return {process};
    return {};
}
