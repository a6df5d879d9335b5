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

    QString path;          ///< "/dev/ttyUSB0"
    dev_t device = 0;      ///< major and minor number
    QString hardware;      ///< the system's path of the hardware; empty for a pseudo-terminal
    QString usb_serial;    ///< of the adapter; empty if it has none
    QString usb_device;    ///< number of the adapter on its bus, another one after each plugging in
    ino_t inode = 0;       ///< of a pseudo-terminal
    dev_t filesystem = 0;  ///< of a pseudo-terminal: a container has numbers of its own
    qint64 made_at_ns = 0;  ///< when a pseudo-terminal was made: inodes are used again
};

bool operator==(const SerialLine& line, const SerialLine& other);

/** Whether this file is that line, whatever its path. */
bool is_open_on(const OpenDevice& file, const SerialLine& line);

/** The serial lines of this machine, as they are now. */
class SerialLines
{
public:
    explicit SerialLines(const SystemRoots& system_roots = SystemRoots());

    /** Asks again which devices are serial lines: the first adapter that is plugged in brings its driver. */
    void look_again();
    /** Whether the system tells which devices are serial lines. */
    bool can_be_told() const;
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
