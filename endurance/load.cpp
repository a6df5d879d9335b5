#include "simulator/terminals.h"

#include "app/main_window.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

// Many fast instruments, each on its own pseudo-terminal, and a window that shows both charts.

namespace
{
constexpr int STATIONS = 32;
constexpr int LINES_PER_SECOND = 24;
constexpr int KNOCK_MS = 20;
constexpr long BILLION = 1000000000;

/**
 * All instruments in turn, evenly spread over the time. The volts count the lines of the discharge, in
 * hundredths, so that a row that is missing shows; the last line of each is told at the end.
 */
[[noreturn]] void play_instruments(const Terminals& terminals)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::vector<char> states(STATIONS, 'O');
    std::vector<int> numbers(STATIONS, 0);
    Beat beat;
    for (int turn = 0;; ++turn) {
        const auto i = size_t(turn % STATIONS);
        const QByteArray commands = terminals[i]->read();
        if (!commands.isEmpty())
            states[i] = commands.back();
        char line[96];
        const int length = std::snprintf(line, sizeof line, "x\t%.2f\t9.8\tx\tx\tID=%d\t%c\r\n",
                                         20.0 + 0.01 * numbers[i], int(i) + 1, states[i]);
        numbers[i] += states[i] == 'D' ? 1 : 0;
        terminals[i]->write(QByteArray(line, length));
        beat.wait(BILLION / STATIONS / LINES_PER_SECOND);
    }
}

void run_for(int milliseconds)
{
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, qApp, &QCoreApplication::quit);
    end.start(milliseconds);
    QCoreApplication::exec();
}

/** An event that tells how long it waited. */
class Knock : public QEvent
{
public:
    Knock() : QEvent(QEvent::User)
    {
        since.start();
    }

    QElapsedTimer since;
};

/** Takes the knocks that another thread gives the window's. */
class Door : public QObject
{
public:
    void knock_for(int milliseconds)
    {
        waits.clear();
        std::thread hand([this, milliseconds] {
            for (int left = milliseconds; left > 0; left -= KNOCK_MS) {
                std::this_thread::sleep_for(std::chrono::milliseconds(KNOCK_MS));
                QCoreApplication::postEvent(this, new Knock);
            }
        });
        run_for(milliseconds + 500);
        hand.join();
    }

    /** Milliseconds in which 99 of 100 were answered. */
    double percentile_99()
    {
        std::sort(waits.begin(), waits.end());
        return waits.empty() ? -1.0 : waits[waits.size() * 99 / 100];
    }

    std::vector<double> waits;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        waits.push_back(double(static_cast<Knock*>(event)->since.nsecsElapsed()) / 1e6);
        return true;
    }
};

void begin_discharge(TestStation& station, int number)
{
    station.profile_name = "Pack";
    station.serial_number = QString::number(number);
    station.measure_internal_resistance = false;
    station.low_voltage_cutoff = 1.0;
    if (!station.begin_log())
        qFatal("The logs cannot be made.");
    station.set_phase(PHASE_CHARGING, "User clicked 'Start'.");
    station.set_phase(PHASE_DISCHARGING, "User clicked 'Skip'");
}

/** Rows of discharges, and how many numbers are missing between them. */
void count_rows(const QByteArray& log, qint64& rows, qint64& missing)
{
    int before = -1;
    bool in_discharge = false;
    for (const QByteArray& line : log.split('\n')) {
        const QList<QByteArray> fields = line.split(',');
        in_discharge = in_discharge || line.startsWith("Discharge");
        if (!in_discharge || fields.size() < 4 || std::isdigit(uchar(line[0])) == 0)
            continue;
        const int number = qRound((fields[2].toDouble() - 20.0) * 100.0);
        // Until an instrument obeys, its lines have no number yet.
        missing += before > 0 ? std::abs(number - before - 1) : 0;
        before = number;
        ++rows;
    }
}

int measure(int argc, char** argv, const QStringList& ports)
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    if (!Settings::load())
        return 1;
    Settings::set_log_dir(folder.path());
    Settings::set_pdf_dir(folder.path());
    if (!Settings::save())  // the window loads them anew
        return 1;
    MainWindow window(nullptr);
    window.resize(1280, 900);
    window.show();
    for (const QString& port : ports)
        window.add_station(new TestStation(&window, new Kestrometer(port)));
    run_for(2000);
    int number = 0;
    for (TestStation* station : qAsConst(TestStation::all_instances))
        begin_discharge(*station, ++number);
    QTimer busy;
    if (qEnvironmentVariable("KEST_ENDURANCE_BROKEN") == "slow") {
        QObject::connect(&busy, &QTimer::timeout, [] { ::usleep(300000); });
        busy.start(400);
    }
    Door door;
    door.knock_for(QByteArray(argv[1]).toInt() * 1000);
    busy.stop();
    qint64 rows = 0;
    qint64 missing = 0;
    const bool broken = qEnvironmentVariable("KEST_ENDURANCE_BROKEN") == "loses rows";
    for (TestStation* station : qAsConst(TestStation::all_instances)) {
        QFile file(station->data_log->fileName());
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        QByteArray log = file.readAll();
        const int middle = log.lastIndexOf('\n', int(log.size()) - 100);
        if (broken)
            log.remove(middle, log.indexOf('\n', middle + 1) - middle);
        count_rows(log, rows, missing);
    }
    std::printf("%lld %lld %.3f %zu\n", rows, missing, door.percentile_99(), door.waits.size());
    return 0;
}
}  // namespace

/** load SECONDS: rows of all logs, rows missing between them, milliseconds of 99 knocks in 100, knocks. */
int main(int argc, char** argv)
{
    Terminals terminals = open_terminals(STATIONS);
    const QStringList ports = port_names(terminals);
    const pid_t instruments = ::fork();
    if (instruments == 0)
        play_instruments(terminals);
    terminals.clear();
    const int status = measure(argc, argv, ports);
    ::kill(instruments, SIGKILL);
    ::waitpid(instruments, nullptr, 0);
    return status;
}
