#include "dialogs/add_test_station_dialog.h"

#include "ui_add_test_station_dialog.h"

#include "common/message_boxes.h"
#include "common/wheel_focus.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "station/test_station.h"

#include <QCollator>
#include <QMessageBox>

#include <algorithm>

const QString AddTestStationDialog::NULL_PORT_NAME = "Preview Only";
const QString AddTestStationDialog::NULL_PORT_DESCRIPTION = "View Charts Only";

namespace
{
/** Ports that no station holds, "COM2" before "COM10". */
QStringList free_port_names()
{
    QStringList names = SerialPorts::names();
    QCollator collator;
    // The C locale compares character by character and would put "COM10" first.
    if (collator.locale().language() == QLocale::C)
        collator.setLocale(QLocale(QLocale::English));
    collator.setNumericMode(true);
    std::sort(names.begin(), names.end(), collator);
    for (const TestStation* station : qAsConst(TestStation::all_instances))
        names.removeAll(station->get_port_name());
    return names;
}

bool wants_an_unverified_port()
{
    const QString text = "Unable to verify that the selected port is connected to a Kestrometer.\n"
                         "The Kestrometer may not be powered.\n"
                         "Check the 12V barrel jack and the battery discharge leads.\n\n"
                         "Use this port anyway?";
    return QMessageBox::question(nullptr, "Unverified Kestrometer Port", text,
                                 QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}
}  // namespace

AddTestStationDialog::AddTestStationDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::AddTestStationDialog>())
{
    ui->setupUi(this);
    leave_wheel_without_focus(this);
    on_pbRefreshPortList_clicked();
}

AddTestStationDialog::~AddTestStationDialog()
{
    // By its handle: the instrument may have died with the station that took it over.
    disconnect(measurement_connection);
    if (result() != Accepted)
        close_port();
}

void AddTestStationDialog::on_pbRefreshPortList_clicked()
{
    const QStringList names = free_port_names();
    ui->cbPort->clear();
    ui->cbPort->addItem(NULL_PORT_NAME);
    ui->cbPort->addItems(names);
    for (const QString& name : names) {
        if (name.contains("usbserial")) {
            ui->cbPort->setCurrentText(name);
            break;
        }
    }
}

void AddTestStationDialog::on_cbPort_currentTextChanged(const QString& text)
{
    close_port();
    waiting_for_off = false;
    // The list is being filled anew.
    if (text.isEmpty())
        return;
    if (text == NULL_PORT_NAME)
        ui->laStationID->setText(QString("%1 (%2)").arg(NULL_PORT_NAME, NULL_PORT_DESCRIPTION));
    else
        open_port(text);
}

void AddTestStationDialog::open_port(const QString& port_name)
{
    ui->laStationID->setText("Attempting to read Kestrometer ID...");
    kestrometer = new Kestrometer(port_name);
    measurement_connection = connect(kestrometer, &Kestrometer::sig_measurement, this,
                                     &AddTestStationDialog::slot_measurement);
    // An earlier run may have left it charging or discharging.
    kestrometer->set_state(Off);
}

void AddTestStationDialog::close_port()
{
    delete kestrometer;
    kestrometer = nullptr;
}

void AddTestStationDialog::slot_measurement()
{
    ui->laStationID->setText(QString("Test Station %1").arg(kestrometer->id));
    if (!waiting_for_off || kestrometer->state != Off)
        return;
    waiting_for_off = false;
    show_notice("The Kestrometer has switched to the 'off' state. You may now proceed.");
}

void AddTestStationDialog::on_pbOK_clicked()
{
    if (kestrometer == nullptr) {
        accept();
    } else if (kestrometer->id == -1) {
        if (wants_an_unverified_port())
            accept();
    } else if (kestrometer->state == Off) {
        accept();
    } else {
        show_error("The Kestrometer has not yet switched to the 'off' state; please wait and try "
                   "again.");
        waiting_for_off = true;
    }
}

void AddTestStationDialog::on_pbCancel_clicked()
{
    close_port();
    reject();
}
