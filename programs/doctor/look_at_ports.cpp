#include "doctor/look.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QVector>

#include <grp.h>
#include <pwd.h>
#include <unistd.h>

namespace
{
/** Adapters that have a port as soon as their driver has them: vendor and how the product begins. */
bool is_serial_adapter(const SeenAdapter& adapter)
{
    struct Family
    {
        const char* vendor_id;
        const char* product_id;
    };
    constexpr Family FAMILIES[] = {
        {"0403", "60"}, {"067b", "23"}, {"10c4", "ea"}, {"1a86", "55"}, {"1a86", "75"},
    };
    for (const Family& family : FAMILIES)
        if (adapter.vendor_id == QLatin1String(family.vendor_id) &&
            adapter.product_id.startsWith(QLatin1String(family.product_id)))
            return true;
    return false;
}

/** A port of the computer itself whose chip is missing has a name all the same, and type 0. */
bool is_real_port(const FileView& view, const QString& name)
{
    static const QRegularExpression serial("^(ttyUSB|ttyACM|ttyAMA|ttyS|rfcomm)[0-9]+$");
    const QString folder = "/sys/class/tty/" + name;
    return serial.match(name).hasMatch() && view.exists(folder + "/device") &&
           (!name.startsWith("ttyS") || view.value(folder + "/type") != "0");
}

/** The folder of the USB adapter above a device; empty if there is none. */
QString usb_folder_above(const FileView& view, QString folder)
{
    while (folder.startsWith("/sys/") && !view.exists(folder + "/idVendor"))
        folder = folder.left(folder.lastIndexOf('/'));
    return folder.startsWith("/sys/") ? folder : QString();
}

/** What udev keeps about a device, from the file with its number, "189:4". */
QString udev_record(const FileView& view, const QString& folder)
{
    return "\n" + view.text("/run/udev/data/c" + view.value(folder + "/dev")) + "\n";
}

SeenAdapter read_adapter(const FileView& view, const QString& folder)
{
    SeenAdapter adapter;
    adapter.vendor_id = view.value(folder + "/idVendor");
    adapter.product_id = view.value(folder + "/idProduct");
    adapter.maker = view.value(folder + "/manufacturer");
    adapter.product = view.value(folder + "/product");
    adapter.serial_number = view.value(folder + "/serial");
    adapter.left_alone = udev_record(view, folder).contains("\nE:ID_MM_DEVICE_IGNORE=1\n");
    const QStringList entries = view.entries(folder);
    for (const QString& entry : entries)
        if (entry.contains(':') && view.link(folder + "/" + entry + "/driver").endsWith("/usbfs"))
            adapter.claimed_by_program = true;
    return adapter;
}

QVector<gid_t> groups_of_user()
{
    const passwd* const entry = ::getpwuid(::getuid());
    if (entry == nullptr)
        return {};
    QVector<gid_t> groups(1024);
    int count = groups.size();
    ::getgrouplist(entry->pw_name, entry->pw_gid, groups.data(), &count);
    groups.resize(qBound(0, count, groups.size()));
    return groups;
}

QVector<gid_t> groups_of_session()
{
    QVector<gid_t> groups(1024);
    groups.resize(qMax(0, ::getgroups(groups.size(), groups.data())));
    groups << ::getegid();
    return groups;
}

void look_at_rights(const FileView& view, SeenPort& port)
{
    const QString node = view.place("/dev/" + port.name);
    const QFileInfo info(node);
    port.has_node = info.exists();
    if (!port.has_node)
        return;
    port.may_open = ::access(QFile::encodeName(node).constData(), R_OK | W_OK) == 0;
    port.group = info.group().isEmpty() ? QString::number(info.groupId()) : info.group();
    port.user_in_group = groups_of_user().contains(info.groupId());
    port.session_in_group = groups_of_session().contains(info.groupId());
}

SeenPort read_port(const FileView& view, const Processes& processes, const QString& name,
                   const QString& usb_folder)
{
    const QString record = udev_record(view, "/sys/class/tty/" + name);
    SeenPort port;
    port.name = name;
    if (!usb_folder.isEmpty())
        port.adapter = read_adapter(view, usb_folder);
    if (record.contains("\nE:ID_MM_PORT_IGNORE=1\n"))
        port.adapter.left_alone = true;
    look_at_rights(view, port);
    port.given_to_the_seat = record.contains("\nG:uaccess\n") || record.contains("\nQ:uaccess\n");
    port.holders = processes.holders_of("/dev/" + name);
    return port;
}
}  // namespace

void look_at_ports(const FileView& view, const Processes& processes, Seen& seen)
{
    QStringList with_port;
    const QStringList names = view.entries("/sys/class/tty");
    for (const QString& name : names) {
        if (!is_real_port(view, name))
            continue;
        const QString device = view.canonical("/sys/class/tty/" + name + "/device");
        with_port << usb_folder_above(view, device);
        seen.ports << read_port(view, processes, name, with_port.constLast());
    }
    const QStringList devices = view.entries("/sys/bus/usb/devices");
    for (const QString& device : devices) {
        const QString folder = view.canonical("/sys/bus/usb/devices/" + device);
        const SeenAdapter adapter = read_adapter(view, folder);
        if (is_serial_adapter(adapter) && !with_port.contains(folder))
            seen.adapters_without_port << adapter;
    }
}
