#include "device/serial_ports.h"
#include "support/test_program.h"

#include <QSerialPortInfo>
#include <QtTest>

class SerialPortsTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void the_ports_of_this_machine_are_listed();
    void another_source_can_be_put_in_front();
    void the_source_is_asked_each_time();
    void the_source_may_add_to_the_ports_of_this_machine();
    void an_empty_source_brings_the_machine_back();
};

namespace
{
QStringList real_names()
{
    QStringList names;
    for (const QSerialPortInfo& port : QSerialPortInfo::availablePorts())
        names.append(port.portName());
    return names;
}
}  // namespace

void SerialPortsTest::cleanup()
{
    SerialPorts::set_source(nullptr);
}

void SerialPortsTest::the_ports_of_this_machine_are_listed()
{
    QCOMPARE(SerialPorts::names(), real_names());
    QCOMPARE(SerialPorts::names_of_this_machine(), real_names());
}

void SerialPortsTest::another_source_can_be_put_in_front()
{
    SerialPorts::set_source([] { return QStringList{"pts/7", "COM2"}; });
    QCOMPARE(SerialPorts::names(), (QStringList{"pts/7", "COM2"}));
    QCOMPARE(SerialPorts::names_of_this_machine(), real_names());
}

void SerialPortsTest::the_source_is_asked_each_time()
{
    int calls = 0;
    SerialPorts::set_source([&calls] { return QStringList{QString::number(++calls)}; });
    QCOMPARE(SerialPorts::names(), QStringList{"1"});
    QCOMPARE(SerialPorts::names(), QStringList{"2"});
}

void SerialPortsTest::the_source_may_add_to_the_ports_of_this_machine()
{
    SerialPorts::set_source([] { return SerialPorts::names_of_this_machine() << "pts/7"; });
    QCOMPARE(SerialPorts::names(), real_names() << "pts/7");
}

void SerialPortsTest::an_empty_source_brings_the_machine_back()
{
    SerialPorts::set_source([] { return QStringList{"pts/7"}; });
    SerialPorts::set_source(nullptr);
    QCOMPARE(SerialPorts::names(), real_names());
}

KEST_GUILESS_TEST(SerialPortsTest)
#include "tst_serial_ports.moc"
