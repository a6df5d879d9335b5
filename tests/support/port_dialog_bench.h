#pragma once

#include "dialogs/add_test_station_dialog.h"

#include <QComboBox>
#include <QStringList>

#include <memory>

/** The port dialog with its widgets at hand, over the ports that the test names. */
class PortDialogBench
{
public:
    explicit PortDialogBench(const QStringList& port_names);
    ~PortDialogBench();
    PortDialogBench(const PortDialogBench&) = delete;
    PortDialogBench& operator=(const PortDialogBench&) = delete;

    /** What the next refresh finds. */
    static void offer(const QStringList& port_names);

    QComboBox* port_box() const;
    QStringList offered() const;
    void choose(const QString& port_name) const;
    QString label() const;
    void press(const char* button) const;

    std::unique_ptr<AddTestStationDialog> dialog;
};
