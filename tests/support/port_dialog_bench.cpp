#include "support/port_dialog_bench.h"

#include "device/serial_ports.h"

#include <QLabel>
#include <QPushButton>

PortDialogBench::PortDialogBench(const QStringList& port_names)
{
    offer(port_names);
    dialog = std::make_unique<AddTestStationDialog>(nullptr);
}

PortDialogBench::~PortDialogBench()
{
    dialog.reset();
    SerialPorts::set_source(nullptr);
}

void PortDialogBench::offer(const QStringList& port_names)
{
    SerialPorts::set_source([port_names] { return port_names; });
}

QComboBox* PortDialogBench::port_box() const
{
    return dialog->findChild<QComboBox*>("cbPort");
}

QStringList PortDialogBench::offered() const
{
    QStringList texts;
    for (int index = 0; index < port_box()->count(); ++index)
        texts.append(port_box()->itemText(index));
    return texts;
}

void PortDialogBench::choose(const QString& port_name) const
{
    port_box()->setCurrentText(port_name);
}

QString PortDialogBench::label() const
{
    return dialog->findChild<QLabel*>("laStationID")->text();
}

void PortDialogBench::press(const char* button) const
{
    dialog->findChild<QPushButton*>(button)->click();
}
