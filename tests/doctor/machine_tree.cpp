#include "machine_tree.h"

#include "support/test_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace
{
const QString DEVICE = "/sys/devices/pci0/usb1/1-4";
}

MachineTree::MachineTree()
{
    // Entered by a process of another user, too.
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7755));
    put("/etc/localtime");
    put("/run/systemd/timesync/synchronized");
    put("/proc/self/mountinfo", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n");
}

QString MachineTree::root() const
{
    return folder.path();
}

void MachineTree::put(const QString& name, const QByteArray& content) const
{
    const QString path = root() + name;
    if (!QDir().mkpath(QFileInfo(path).path()) || !write_file(path, content))
        qFatal("%s cannot be written.", qPrintable(path));
}

void MachineTree::link(const QString& name, const QString& target) const
{
    const QString path = root() + name;
    QFile::remove(path);
    if (!QDir().mkpath(QFileInfo(path).path()) ||
        ::symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()) != 0)
        qFatal("%s cannot be made.", qPrintable(path));
}

void MachineTree::remove(const QString& name) const
{
    const QString path = root() + name;
    if (!(QFileInfo(path).isDir() ? QDir(path).removeRecursively() : QFile::remove(path)))
        qFatal("%s cannot be removed.", qPrintable(path));
}

void MachineTree::plug_in(const QString& ids) const
{
    put(DEVICE + "/idVendor", ids.section(':', 0, 0).toUtf8() + "\n");
    put(DEVICE + "/idProduct", ids.section(':', 1).toUtf8() + "\n");
    put(DEVICE + "/manufacturer", "FTDI\n");
    put(DEVICE + "/product", "FT232R USB UART\n");
    put(DEVICE + "/serial", "A50285BI\n");
    put(DEVICE + "/dev", "189:3\n");
    put(DEVICE + "/1-4:1.0/bInterfaceNumber", "00\n");
    link("/sys/bus/usb/devices/1-4", "../../../devices/pci0/usb1/1-4");
}

void MachineTree::give_port(const QString& name, const QString& leads_to) const
{
    const QString inside = "/1-4:1.0/" + name + "/tty/" + name;
    put(DEVICE + inside + "/dev", "188:0\n");
    link(DEVICE + inside + "/device", "../../../" + name);
    link("/sys/class/tty/" + name, "../../devices/pci0/usb1/1-4" + inside);
    link("/dev/" + name, leads_to);
}

void MachineTree::run(int pid, const QByteArray& program) const
{
    const QString process = QString("/proc/%1").arg(pid);
    put(process + "/cmdline", program + '\0' + "--option" + '\0');
    put(process + "/comm", program.left(15) + "\n");
}
