#include "programs/common/mounts.h"

#include "programs/common/file_view.h"

namespace
{
/** "\040" is a blank in the kernel's table of mounts. */
QString unescaped(const QString& text)
{
    QString result;
    for (int at = 0; at < text.size(); ++at) {
        bool ok = false;
        const int code = text[at] == '\\' ? text.midRef(at + 1, 3).toInt(&ok, 8) : 0;
        result += ok ? QChar(code) : text[at];
        at += ok ? 3 : 0;
    }
    return result;
}

/** A line of the kernel's table. */
struct Mount
{
    explicit Mount(const QString& line)
        : point(unescaped(line.section(' ', 4, 4))), kind(line.section(" - ", 1).section(' ', 0, 0))
    {
    }

    QString point;
    QString kind;  ///< "ext4"
};

QStringList lines_of_mounts(const FileView& view)
{
    return view.text("/proc/self/mountinfo").split('\n');
}
}  // namespace

QStringList network_mounts(const FileView& view)
{
    QStringList points;
    for (const QString& line : lines_of_mounts(view)) {
        const Mount mount(line);
        if (is_network(mount.kind))
            points << mount.point;
    }
    return points;
}

QString file_system_of(const FileView& view, const QString& path)
{
    QString nearest;
    QString kind;
    for (const QString& line : lines_of_mounts(view)) {
        const Mount mount(line);
        const QString& point = mount.point;
        const QString inside = point == "/" ? point : point + "/";
        // The later of two mounts on one place hides the earlier.
        if (!point.isEmpty() && (path + "/").startsWith(inside) && point.size() >= nearest.size()) {
            nearest = point;
            kind = mount.kind;
        }
    }
    return kind;
}

bool is_network(const QString& file_system)
{
    static const QStringList KINDS = {
        "afs",         "ceph",       "cifs", "fuse.davfs", "fuse.glusterfs", "fuse.gvfsd-fuse",
        "fuse.rclone", "fuse.sshfs", "nfs",  "nfs4",       "smb3",           "smbfs"};
    return KINDS.contains(file_system);
}
