#include "device/serial_ports.h"

#include <QSerialPortInfo>

namespace SerialPorts
{
namespace
{
std::function<QStringList()>& other_source()
{
    static std::function<QStringList()> source;
    return source;
}
}  // namespace

QStringList names()
{
    return other_source() ? other_source()() : names_of_this_machine();
}

QStringList names_of_this_machine()
{
    QStringList port_names;
    const QList<QSerialPortInfo> ports = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo& port : ports)
        port_names.append(port.portName());
    return port_names;
}

void set_source(std::function<QStringList()> source)
{
    other_source() = std::move(source);
}
}  // namespace SerialPorts
