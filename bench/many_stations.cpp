#include "bench_station.h"
#include "bench_table.h"

#include "app/main_window.h"
#include "device/kestrometer.h"
#include "simulator/pseudo_terminal.h"
#include "station/test_station.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int STATIONS = 64;
constexpr int LINES_PER_SECOND = 10;
constexpr int SECONDS = 20;
constexpr long BILLION = 1000000000;

using Terminals = std::vector<std::unique_ptr<PseudoTerminal>>;

Terminals open_terminals()
{
    Terminals terminals;
    for (int i = 0; i < STATIONS; ++i) {
        terminals.push_back(std::make_unique<PseudoTerminal>());
        QString error;
        if (!terminals.back()->open(error))
            qFatal("%s", qPrintable(error));
    }
    return terminals;
}

void sleep_until(timespec& time, long nanoseconds_later)
{
    time.tv_nsec += nanoseconds_later;
    time.tv_sec += time.tv_nsec / BILLION;
    time.tv_nsec %= BILLION;
    ::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &time, nullptr);
}

/** All instruments: one after the other, evenly over the time, each obeys and then speaks. */
[[noreturn]] void play_instruments(const Terminals& terminals)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::vector<char> states(STATIONS, 'O');
    timespec time = {};
    ::clock_gettime(CLOCK_MONOTONIC, &time);
    for (int turn = 0;; ++turn) {
        const auto i = size_t(turn % STATIONS);
        const QByteArray commands = terminals[i]->read();
        if (!commands.isEmpty())
            states[i] = commands.back();
        const int number = turn / STATIONS;
        char line[96];
        const int length = std::snprintf(line, sizeof line, "x\t%.2f\t%.1f\tx\tx\tID=%d\t%c\r\n",
                                         41.0 - 0.0001 * number + 0.01 * (number * 7 % 5),
                                         9.8 + 0.1 * (number * 5 % 4), int(i) + 1, states[i]);
        terminals[i]->write(QByteArray(line, length));
        sleep_until(time, BILLION / STATIONS / LINES_PER_SECOND);
    }
}

void run_for(int milliseconds)
{
    QTimer::singleShot(milliseconds, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

void add_stations(MainWindow& window, const QStringList& ports)
{
    for (const QString& port : ports)
        window.add_station(new TestStation(&window, new Kestrometer(port)));
    // Every instrument is heard before the tests begin.
    run_for(2000);
    int number = 0;
    for (TestStation* station : qAsConst(TestStation::all_instances))
        begin_discharge(*station, "Pack", QString::number(++number));
}

/** Points recorded in all series since the tests began. */
int points()
{
    int count = 0;
    for (const TestStation* station : qAsConst(TestStation::all_instances))
        count += station->current_cycle->voltage_vs_amphours.points.size();
    return count;
}

BenchRow run_stations(int argc, char** argv, const QStringList& ports)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    use_bench_settings(folder.path());
    MainWindow window(nullptr);
    window.show();
    add_stations(window, ports);
    run_for(2000);

    const int points_before = points();
    const double before = cpu_seconds();
    run_for(SECONDS * 1000);
    const double share = (cpu_seconds() - before) / SECONDS * 100.0;
    const int lines = points() - points_before;
    std::printf("%d lines arrived in %d seconds, %.1f us of CPU each\n", lines, SECONDS,
                share / 100.0 * SECONDS / lines * 1e6);
    return {"64 stations at 10 lines a second, share of a core", share, 0.0, 0.0, "%", 3.0};
}
}  // namespace

int main(int argc, char** argv)
{
    Terminals terminals = open_terminals();
    QStringList ports;
    for (const auto& terminal : terminals)
        ports += terminal->port_name();
    // Before any toolkit: the instruments are a process of their own, whose CPU does not count.
    const pid_t instruments = ::fork();
    if (instruments == 0)
        play_instruments(terminals);
    terminals.clear();
    const BenchRow row = run_stations(argc, argv, ports);
    ::kill(instruments, SIGKILL);
    ::waitpid(instruments, nullptr, 0);
    print_bench_table({row});
    return 0;
}
