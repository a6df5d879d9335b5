#pragma once

#include <QStringList>

#include <functional>

/** The serial ports that can be chosen for an instrument. */
namespace SerialPorts
{
/** Names of the ports that are offered, as QSerialPort::portName gives them, in no special order. */
QStringList names();

/** Names of the ports of this machine; the same as names() unless another source is set. */
QStringList names_of_this_machine();

/** Puts another source behind names(), simulated ports for example; an empty one takes it away. */
void set_source(std::function<QStringList()> source);
}  // namespace SerialPorts
