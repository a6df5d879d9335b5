#pragma once

#include "app/main_window.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "dialogs/add_test_station_dialog.h"
#include "station/test_station.h"
#include "support/help_document.h"
#include "support/modal_answer.h"
#include "support/station_bench.h"
#include "support/wire.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

/** A line of an instrument that is off. */
inline QByteArray line_of(int id)
{
    return "x\t48.00\t0.0\tx\tx\tID=" + QByteArray::number(id) + "\tO";
}

/** The window over settings of its own, with its stations added through the port dialog. */
struct WindowBench
{
    WindowBench()
    {
        load_test_settings(folder.path());
        forget_help_document();
        window = std::make_unique<MainWindow>(nullptr);
        // The window has loaded the settings anew.
        Settings::set_log_dir(folder.path());
        Settings::set_pdf_dir(folder.path());
        window->show();
    }

    ~WindowBench()
    {
        window.reset();
        SerialPorts::set_source(nullptr);
    }

    TestStation* add_station(Wire& wire, int id)
    {
        const QString port = wire.port_name();
        SerialPorts::set_source([port] { return QStringList{port}; });
        answers.handle([&wire, port, id](QWidget* widget) {
            auto* dialog = qobject_cast<AddTestStationDialog*>(widget);
            dialog->findChild<QComboBox*>("cbPort")->setCurrentText(port);
            QVERIFY(wire.send(line_of(id), *dialog->kestrometer));
            dialog->findChild<QPushButton*>("pbOK")->click();
        });
        button("pbNewTestStation")->click();
        return station(QString("Station %1").arg(id));
    }

    void add_preview()
    {
        SerialPorts::set_source([] { return QStringList(); });
        answers.handle([](QWidget* dialog) { dialog->findChild<QPushButton*>("pbOK")->click(); });
        button("pbNewTestStation")->click();
    }

    static TestStation* station(const QString& id)
    {
        for (TestStation* station : qAsConst(TestStation::all_instances))
            if (station->get_id() == id)
                return station;
        return nullptr;
    }

    QPushButton* button(const char* name) const
    {
        return window->findChild<QPushButton*>(name);
    }

    /** The panels from top to bottom, then what else the column holds. */
    QStringList column() const
    {
        QStringList names;
        auto* layout = window->findChild<QBoxLayout*>("verticalLayout");
        for (int i = 0; i < layout->count(); ++i) {
            auto* panel = qobject_cast<TestStation*>(layout->itemAt(i)->widget());
            names.append(panel != nullptr ? panel->get_id() : QString("stretch"));
        }
        return names;
    }

    /** A test under way: the station is charging. */
    static void start_test(TestStation* station)
    {
        station->serial_number_edited = true;
        station->profile_name = "Pack";
        station->serial_number = QString::number(station->kestrometer->id);
        station->update_ui();
        station->findChild<QPushButton*>("pbStartSkip")->click();
        QCOMPARE(station->phase, PHASE_CHARGING);
    }

    QTemporaryDir folder;
    ModalAnswer answers;
    std::unique_ptr<MainWindow> window;
};
