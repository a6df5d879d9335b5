#include "guard/terminal_kinds.h"

#include <QList>

#include <sys/sysmacros.h>

namespace
{
TerminalKind kind_from_word(const QByteArray& word)
{
    if (word == "serial")
        return TerminalKind::Serial;
    return word == "pty:slave" ? TerminalKind::PseudoTerminal : TerminalKind::None;
}
}  // namespace

TerminalKinds TerminalKinds::from_text(const QByteArray& drivers)
{
    TerminalKinds kinds;
    for (const QByteArray& line : drivers.split('\n'))
        kinds.add_line(line);
    return kinds;
}

void TerminalKinds::add_line(const QByteArray& line)
{
    // The columns in front may hold blanks; some drivers have no word for their kind.
    const QList<QByteArray> columns = line.simplified().split(' ');
    const int count = columns.size();
    const TerminalKind kind = kind_from_word(columns.last());
    if (count < 4 || kind == TerminalKind::None)
        return;
    const QList<QByteArray> minors = columns[count - 2].split('-');
    bool ok[3] = {};
    const Driver driver = {columns[count - 3].toUInt(&ok[0]), minors.first().toUInt(&ok[1]),
                           minors.last().toUInt(&ok[2]), kind};
    if (ok[0] && ok[1] && ok[2])
        drivers_known << driver;
}

bool TerminalKinds::knows_any() const
{
    return !drivers_known.isEmpty();
}

TerminalKind TerminalKinds::kind_of(dev_t device) const
{
    for (const Driver& driver : drivers_known)
        if (driver.major == major(device) && minor(device) >= driver.first_minor &&
            minor(device) <= driver.last_minor)
            return driver.kind;
    return TerminalKind::None;
}
