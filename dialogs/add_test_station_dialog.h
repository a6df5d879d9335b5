#pragma once

#include <QDialog>

#include <memory>

class Kestrometer;

namespace Ui
{
class AddTestStationDialog;
}

/** Picks the serial port of a new station and sees to it that the instrument there is off. */
class AddTestStationDialog : public QDialog
{
    Q_OBJECT

public:
    static const QString NULL_PORT_NAME;         ///< the entry for a station without an instrument
    static const QString NULL_PORT_DESCRIPTION;  ///< what such a station is for

    explicit AddTestStationDialog(QWidget* parent);
    ~AddTestStationDialog() override;

    /** On the chosen port; null for a preview. Owned until the dialog is accepted, the caller's then. */
    Kestrometer* kestrometer = nullptr;

private slots:
    void on_pbRefreshPortList_clicked();
    void on_cbPort_currentTextChanged(const QString& text);
    void on_pbOK_clicked();
    void on_pbCancel_clicked();
    void slot_measurement();

private:
    void open_port(const QString& port_name);
    void close_port();

    bool waiting_for_off = false;  ///< OK was pressed before the instrument was off
    QMetaObject::Connection measurement_connection;
    std::unique_ptr<Ui::AddTestStationDialog> ui;
};
