#include "support/log_loading.h"
#include "support/whole_test.h"

#include "app/main_window.h"
#include "config/settings.h"
#include "demo/time_lapse.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>

#include <cstdio>
#include <vector>

// Stations that test in time lapse until the process is killed, and a look at the logs they leave.

namespace
{
constexpr int POLL_MS = 5;

void type(const TestStation& station, const char* name, const QString& text)
{
    auto* edit = station.findChild<QLineEdit*>(name);
    edit->setText(text);
    emit edit->textEdited(text);
}

TestStation* add_station(MainWindow& window, const QString& port, int number)
{
    auto* instrument = new Kestrometer(port);
    instrument->set_state(Off);
    auto* station = new TestStation(&window, instrument);
    window.add_station(station);
    type(*station, "leProfileName", "Pack");
    type(*station, "leSerialNumber", QString::number(number));
    type(*station, "leInternalResistanceTestIntervalAh", "0.02");
    station->findChild<QSpinBox*>("sbNumberOfCycles")->setValue(99);
    return station;
}

/** Presses Start on those that have heard from their instrument; true once all of them test. */
bool start_those_ready(const std::vector<TestStation*>& stations)
{
    bool all = true;
    for (TestStation* station : stations) {
        auto* button = station->findChild<QPushButton*>("pbStartSkip");
        if (station->phase == PHASE_IDLE && station->kestrometer->id != -1 && button->isEnabled()) {
            button->click();
            station->max_charge_time = 30;  // shorter than Start takes without a question
        }
        all = all && station->phase != PHASE_IDLE;
    }
    return all;
}

/** A program that loses rows, to see that they are missed. */
void lose_rows(TestStation& station)
{
    delete station.data_log;
    station.data_log = new QFile("/dev/null");
    if (!station.data_log->open(QIODevice::ReadWrite | QIODevice::Text))
        qFatal("There is no /dev/null.");
}

/** kill run FOLDER SPEED PORT... */
int run(const QStringList& arguments)
{
    if (!Settings::load())
        return 1;
    Settings::set_log_dir(arguments[2]);
    Settings::set_pdf_dir(arguments[2]);
    Settings::set_log_all_telemetry(true);
    Settings::save();
    start_time_lapse(arguments[3].toDouble());
    MainWindow window(nullptr);
    window.show();
    std::vector<TestStation*> stations;
    for (const QString& port : arguments.mid(4))
        stations.push_back(add_station(window, port, int(stations.size())));
    const bool broken = !qEnvironmentVariableIsEmpty("KEST_ENDURANCE_BROKEN");
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, [&] {
        if (!start_those_ready(stations))
            return;
        poll.stop();
        if (broken)
            lose_rows(*stations.front());
        std::puts("running");
        std::fflush(stdout);
    });
    poll.start(POLL_MS);
    return QApplication::exec();
}

/** What a test that takes up the log leaves loads again, with at least what was there. */
const char* outcome_of(const QString& path)
{
    WholeTest test;
    load_log(test.bench, path);
    if (test.station.data_log == nullptr)
        return "refused";
    const int cycles = test.station.cycles.size();
    test.press("pbStartSkip");
    if (test.station.phase == PHASE_IDLE)
        return "not resumed";
    test.run(3);
    test.press("pbStartSkip");
    test.run(3);
    if (test.station.cycles.size() <= cycles)
        return "not resumed";
    TestStation again(nullptr, nullptr);
    again.data_log = new QFile(path);
    const bool loaded = again.data_log->open(QIODevice::ReadWrite | QIODevice::Text) &&
                        again.read_data_log() && again.cycles.size() == test.station.cycles.size();
    return loaded ? "loaded and resumed" : "not loaded again";
}

/** kill check LOG... */
int check(const QStringList& logs)
{
    for (const QString& log : logs)
        std::printf("%s\n", outcome_of(log));
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return arguments.value(1) == "run" ? run(arguments) : check(arguments.mid(2));
}
