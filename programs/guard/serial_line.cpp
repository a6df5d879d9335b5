#include "guard/serial_line.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace
{
QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString word_in(const QString& path)
{
    return QString::fromUtf8(contents(path)).trimmed();
}
}  // namespace

QString SerialLine::name() const
{
    return path.startsWith("/dev/") ? path.mid(5) : path;
}

bool operator==(const SerialLine& line, const SerialLine& other)
{
    return line.path == other.path && line.device == other.device &&
           line.hardware == other.hardware && line.usb_serial == other.usb_serial &&
           line.usb_device == other.usb_device && line.inode == other.inode &&
           line.filesystem == other.filesystem && line.made_at_ns == other.made_at_ns;
}

bool is_open_on(const OpenDevice& file, const SerialLine& line)
{
    return file.device == line.device &&
           (line.inode == 0 || (file.inode == line.inode && file.filesystem == line.filesystem));
}

SerialLines::SerialLines(const SystemRoots& system_roots) : roots(system_roots)
{
    look_again();
}

void SerialLines::look_again()
{
    kinds = TerminalKinds::from_text(contents(roots.proc + "/tty/drivers"));
}

bool SerialLines::can_be_told() const
{
    return kinds.knows_any();
}

std::optional<SerialLine> SerialLines::at(const QString& path) const
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0 || !S_ISCHR(status.st_mode))
        return {};
    SerialLine line;
    line.path = path;
    line.device = status.st_rdev;
    switch (kinds.kind_of(line.device)) {
    case TerminalKind::None:
        return {};
    case TerminalKind::Serial:
        read_hardware(line);
        return line;
    case TerminalKind::PseudoTerminal:
        line.inode = status.st_ino;
        line.filesystem = status.st_dev;
        line.made_at_ns = qint64(status.st_ctim.tv_sec) * 1000000000 + status.st_ctim.tv_nsec;
        return line;
    }
    return {};
}

void SerialLines::read_hardware(SerialLine& line) const
{
    const QString entry =
        QString("%1/dev/char/%2:%3").arg(roots.sys).arg(major(line.device)).arg(minor(line.device));
    line.hardware = QFileInfo(entry).canonicalFilePath();
    // Upwards from the line to its adapter, which is the first to have a number on a bus.
    QDir folder(line.hardware);
    while (!line.hardware.isEmpty() && !folder.isRoot() && !folder.exists("devnum"))
        folder.setPath(QFileInfo(folder.path()).path());
    line.usb_device = word_in(folder.filePath("devnum"));
    line.usb_serial = word_in(folder.filePath("serial"));
}

bool SerialLines::unchanged(const SerialLine& line) const
{
    const std::optional<SerialLine> now = at(line.path);
    return now.has_value() && *now == line;
}

QVector<SerialLine> SerialLines::among(const OpenFiles& files,
                                       const QVector<dev_t>& not_these) const
{
    QVector<SerialLine> lines;
    for (const OpenDevice& file : files.devices) {
        if (!file.both_ways || files.have_far_end_of(file.path) ||
            not_these.contains(file.device) || kinds.kind_of(file.device) == TerminalKind::None)
            continue;
        const std::optional<SerialLine> line = at(file.path);
        // The path of a line that was pulled leads nowhere, or to its successor.
        if (line.has_value() && is_open_on(file, *line) && !lines.contains(*line))
            lines << *line;
    }
    return lines;
}
