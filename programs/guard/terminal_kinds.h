#pragma once

#include <QByteArray>
#include <QVector>

#include <sys/types.h>

enum class TerminalKind
{
    None,
    Serial,
    PseudoTerminal,  ///< the side that programs open
};

/** What kind of terminal hides behind the number of a device, as the system's list of drivers tells. */
class TerminalKinds
{
public:
    /** Reads lines such as "usbserial /dev/ttyUSB 188 0-511 serial"; others are left out. */
    static TerminalKinds from_text(const QByteArray& drivers);

    TerminalKind kind_of(dev_t device) const;
    /** Whether the list names any serial line at all. */
    bool knows_any() const;

private:
    struct Driver
    {
        unsigned major;
        unsigned first_minor;
        unsigned last_minor;
        TerminalKind kind;
    };

    void add_line(const QByteArray& line);

    QVector<Driver> drivers_known;
};
