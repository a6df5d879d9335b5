#include "support/simulated_link.h"

#include "support/wire.h"

#include "common/date_time.h"
#include "simulator/faults.h"
#include "station/test_station.h"

namespace
{
const QByteArray RESET_COMMAND = QByteArray::fromHex("55555555555500000004");
}  // namespace

SimulatedLink::SimulatedLink(Wire& cable, TestStation& listener, const PackModel& pack, int id)
    : simulated(pack, id), wire(cable), station(listener)
{
}

void SimulatedLink::advance(double seconds)
{
    const QByteArray bytes = simulated.advance(seconds);
    if (plugged && !simulated.port_present())
        wire.hang_up();
    // A cable that was pulled stays so: a port that comes back is another one.
    plugged = plugged && simulated.port_present();
    if (!plugged)
        return;
    lines += bytes.count("\r\n");
    const int piece = simulated.splits_bytes() ? 1 : bytes.size();
    for (int sent = 0; sent < bytes.size(); sent += piece)
        send(bytes.mid(sent, piece));
    take_commands();
}

void SimulatedLink::send(const QByteArray& bytes)
{
    if (on_send)
        on_send(bytes);
    if (!wire.send_bytes(bytes, *station.kestrometer))
        qFatal("The station did not take: %s", bytes.constData());
}

void SimulatedLink::take_commands()
{
    if (!plugged)
        return;
    QByteArray bytes = wire.commands();
    simulated.receive(bytes);
    while (!bytes.isEmpty()) {
        const int length = bytes.startsWith(RESET_COMMAND) ? RESET_COMMAND.size() : 1;
        record(bytes.left(length));
        bytes.remove(0, length);
    }
}

void SimulatedLink::record(const QByteArray& command)
{
    commands += QString("%1 line %2, phase %3 %4: %5\n")
                    .arg(Time::now().toString(Time::ISO_8601_DATE_TIME_FORMAT))
                    .arg(lines)
                    .arg(station.phase)
                    .arg(station.phase_to_string(station.phase),
                         QString::fromLatin1(command.toHex(' ').toUpper()))
                    .toUtf8();
}

void SimulatedLink::set_fault(const QString& words)
{
    QString error;
    if (!::set_fault(simulated, words, error))
        qFatal("%s", qPrintable(error));
}
