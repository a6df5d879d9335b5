#pragma once

#include "guard/terminal_kinds.h"
#include "programs/common/open_files.h"

#include <QMetaType>
#include <QString>
#include <QVector>

#include <optional>

/** What tells a serial line from every other that had its name before or will have it later. */
struct SerialLine
{
    /** "ttyUSB0", "pts/3". */
    QString name() const;

    QString path;        ///< "/dev/ttyUSB0"
    dev_t device = 0;    ///< major and minor number
    QString hardware;    ///< the system's path of the hardware; empty for a pseudo-terminal
    QString usb_serial;  ///< of the adapter; empty if it has none
    QString usb_device;  ///< number of the adapter on its bus, another one after each plugging in
    ino_t inode = 0;     ///< of a pseudo-terminal
    qint64 made_at_ns = 0;  ///< when a pseudo-terminal was made: inodes are used again
};

bool operator==(const SerialLine& line, const SerialLine& other);

/** The serial lines of this machine, as they are now. */
class SerialLines
{
public:
    explicit SerialLines(const SystemRoots& system_roots = SystemRoots());

    /** The line that has this path now; none if it is no serial line. */
    std::optional<SerialLine> at(const QString& path) const;
    /** Whether the line is what it was when it was noted. */
    bool unchanged(const SerialLine& line) const;
    /** Those among the open files, each once, but for the terminals of `not_these`. */
    QVector<SerialLine> among(const OpenFiles& files, const QVector<dev_t>& not_these) const;

    SystemRoots roots;

private:
    void read_hardware(SerialLine& line) const;

    TerminalKinds kinds;
};
