#include "bench_station.h"
#include "bench_table.h"

#include "app/main_window.h"
#include "device/kestrometer.h"
#include "simulator/terminals.h"
#include "station/test_station.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
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
constexpr int PLAIN_SECONDS = 6;
constexpr long BILLION = 1000000000;

volatile std::sig_atomic_t in_bursts = 0;

void toggle_bursts(int)
{
    in_bursts = in_bursts == 0 ? 1 : 0;
}

/**
 * All instruments, one after the other: each obeys and then speaks. They speak evenly spread over the
 * time, so that each line wakes the application by itself, or all at once.
 */
[[noreturn]] void play_instruments(const Terminals& terminals)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    std::signal(SIGUSR1, toggle_bursts);
    std::vector<char> states(STATIONS, 'O');
    Beat beat;
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
        if (in_bursts == 0)
            beat.wait(BILLION / STATIONS / LINES_PER_SECOND);
        else if (i == STATIONS - 1)
            beat.wait(BILLION / LINES_PER_SECOND);
    }
}

/** The limit: what arrives on any port goes into one file. @return CPU share, in percent */
double share_of_plain_loop(const QStringList& ports)
{
    std::vector<pollfd> waiting;
    for (const QString& port : ports) {
        const QByteArray path = "/dev/" + port.toLocal8Bit();
        waiting.push_back({::open(path.constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK), POLLIN, 0});
    }
    std::FILE* const file = std::tmpfile();
    const double before = cpu_seconds();
    const std::time_t end = std::time(nullptr) + PLAIN_SECONDS;
    char line[4096];
    while (std::time(nullptr) < end && ::poll(waiting.data(), waiting.size(), 1000) > 0) {
        for (const pollfd& port : waiting) {
            const ssize_t length = port.revents != 0 ? ::read(port.fd, line, sizeof line) : 0;
            if (length > 0 && ::write(::fileno(file), line, size_t(length)) != length)
                qFatal("The file of the plain loop cannot be written.");
        }
    }
    const double share = (cpu_seconds() - before) / PLAIN_SECONDS * 100.0;
    std::fclose(file);
    for (const pollfd& port : waiting)
        ::close(port.fd);
    return share;
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

double share_of_application()
{
    const double before = cpu_seconds();
    run_for(SECONDS * 1000);
    return (cpu_seconds() - before) / SECONDS * 100.0;
}

void compare(int argc, char** argv, const QStringList& ports, pid_t instruments)
{
    const double plain_spread = share_of_plain_loop(ports);
    ::kill(instruments, SIGUSR1);
    const double plain_bursts = share_of_plain_loop(ports);

    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    use_bench_settings(folder.path());
    MainWindow window(nullptr);
    window.show();
    add_stations(window, ports);
    run_for(2000);
    const double bursts = share_of_application();
    ::kill(instruments, SIGUSR1);
    run_for(1000);
    const double spread = share_of_application();

    print_bench_table({
        {"64 stations, 10 lines a second, all at once", bursts, plain_bursts, 0.0, "%", 3.0},
        {"64 stations, 10 lines a second, one by one", spread, plain_spread, 0.0, "%"},
    });
}
}  // namespace

int main(int argc, char** argv)
{
    Terminals terminals = open_terminals(STATIONS);
    const QStringList ports = port_names(terminals);
    // Before any toolkit: the instruments are a process of their own, whose CPU does not count.
    const pid_t instruments = ::fork();
    if (instruments == 0)
        play_instruments(terminals);
    terminals.clear();
    compare(argc, argv, ports, instruments);
    ::kill(instruments, SIGKILL);
    ::waitpid(instruments, nullptr, 0);
    return 0;
}
