// The application's own window with three stations, which obeys lines on its standard input.

#include "support/modal_answer.h"

#include "app/main_window.h"
#include "config/settings.h"
#include "demo/time_lapse.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "station/test_station.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSocketNotifier>
#include <QSpinBox>
#include <QTimer>

#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>

namespace
{
/** Types `text` as the operator would, so that the panel's own slots take it over. */
void type(const TestStation& station, const char* name, const QString& text)
{
    auto* edit = station.findChild<QLineEdit*>(name);
    edit->setText(text);
    emit edit->textEdited(text);
}

class Night : public QObject
{
public:
    Night(const QString& log_folder, const QStringList& ports)
        : orders(STDIN_FILENO, QSocketNotifier::Read), window(std::make_unique<MainWindow>(nullptr))
    {
        Settings::set_log_dir(log_folder);
        Settings::set_pdf_dir(log_folder);
        SerialPorts::set_source([ports] { return ports; });
        window->show();
        for (const QString& port : ports)
            add_station(port);
        connect(&orders, &QSocketNotifier::activated, this, &Night::obey);
        connect(&ready, &QTimer::timeout, this, &Night::tell_when_ready);
        ready.start(1);
    }

private:
    void add_station(const QString& port)
    {
        auto* const instrument = new Kestrometer(port);
        instrument->set_state(Off);
        auto* const station = new TestStation(window.get(), instrument);
        window->add_station(station);
        type(*station, "leProfileName", QString("Pack %1").arg(QChar('A' + stations.size())));
        type(*station, "leSerialNumber", QString::number(stations.size() + 1));
        type(*station, "leMaxChargeTime", "0.5");
        station->findChild<QSpinBox*>("sbNumberOfCycles")->setValue(1);
        // The second one waits for its operator before it discharges.
        station->findChild<QCheckBox*>("cbPromptToDischarge")->setChecked(stations.size() == 1);
        stations << station;
    }

    /** Instruments are to have spoken before a button is pressed. */
    void tell_when_ready()
    {
        for (const TestStation* station : stations)
            if (station->kestrometer->id == -1 ||
                !station->findChild<QPushButton*>("pbStartSkip")->isEnabled())
                return;
        ready.stop();
        std::puts("ready");
        std::fflush(stdout);
    }

    /** "pbStartSkip 0" presses that button of the first station. */
    void obey()
    {
        std::string line;
        if (!std::getline(std::cin, line)) {
            QApplication::quit();
            return;
        }
        const QStringList words = QString::fromStdString(line).split(' ');
        for (int box = 0; box < 3; ++box)
            answers.click(QMessageBox::Ok);
        stations.at(words.at(1).toInt())->findChild<QPushButton*>(words.at(0))->click();
        std::puts("pressed");
        std::fflush(stdout);
    }

    QSocketNotifier orders;
    std::unique_ptr<MainWindow> window;
    QList<TestStation*> stations;  ///< owned by the window
    ModalAnswer answers;
    QTimer ready;
};
}  // namespace

/** LOG-FOLDER SPEED PORT... */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QStringList words = QApplication::arguments();
    start_time_lapse(words.at(2).toDouble());
    const Night night(words.at(1), words.mid(3));
    return QApplication::exec();
}
