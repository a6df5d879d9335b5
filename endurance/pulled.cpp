#include "simulator/pseudo_terminal.h"

#include "app/main_window.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sys/resource.h>
#include <vector>

// Sixteen cables pulled at once, and one that stays: in real time, as the panels look once a second.

namespace
{
constexpr int PULLED = 16;
constexpr int BEFORE_MS = 3000;
constexpr int AFTER_MS = 10000;
constexpr int LINE_MS = 1000;

/** A cable on which a line comes once a second until it is pulled. */
struct Cable
{
    PseudoTerminal terminal;
    TestStation* station = nullptr;
    QTimer lines;
    QElapsedTimer since_last;
    qint64 told_after = -1;  ///< milliseconds from the last line to the warning
    int number = 0;
    int sent = 0;
};

double processor_seconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void send_line(Cable& cable)
{
    const QByteArray line =
        "KEST\t24.00\t0.0\t25\t0\tID=" + QByteArray::number(cable.number) + "\tO\r\n";
    cable.terminal.write(line);
    cable.since_last.start();
    ++cable.sent;
}

void wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}
bool is_told(const Cable& cable)
{
    return cable.station->findChild<QLabel*>("laLostCommunication")->isVisible();
}

std::unique_ptr<Cable> plug_in(MainWindow& window, int number)
{
    auto cable = std::make_unique<Cable>();
    QString error;
    if (!cable->terminal.open(error))
        qFatal("%s", qPrintable(error));
    cable->number = number;
    cable->station = new TestStation(&window, new Kestrometer(cable->terminal.port_name()));
    window.add_station(cable->station);
    QObject::connect(&cable->lines, &QTimer::timeout, [one = cable.get()] { send_line(*one); });
    cable->lines.start(LINE_MS);
    return cable;
}

void pull(Cable& cable)
{
    cable.lines.stop();
    // A program that polls a dead port: its lines end, but nothing tells it.
    if (qEnvironmentVariable("KEST_ENDURANCE_BROKEN") != "busy")
        cable.terminal.close();
}

void note_warnings(const std::vector<std::unique_ptr<Cable>>& cables)
{
    for (const auto& cable : cables)
        if (cable->told_after < 0 && is_told(*cable))
            cable->told_after = cable->since_last.elapsed();
}
}  // namespace

/** Prints: per cent of a core, milliseconds to the last warning or -1, lines sent and seen on the one left. */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    if (!Settings::load())
        return 1;
    Settings::set_log_dir(folder.path());
    Settings::set_pdf_dir(folder.path());
    Settings::save();
    MainWindow window(nullptr);
    window.show();
    std::vector<std::unique_ptr<Cable>> cables;
    for (int number = 1; number <= PULLED; ++number)
        cables.push_back(plug_in(window, number));
    const auto left = plug_in(window, PULLED + 1);
    int seen = 0;
    QObject::connect(left->station->kestrometer, &Kestrometer::sig_measurement,
                     [&seen] { ++seen; });
    wait(BEFORE_MS);

    for (const auto& cable : cables)
        pull(*cable);
    QTimer busy;
    if (qEnvironmentVariable("KEST_ENDURANCE_BROKEN") == "busy")
        busy.start(0);
    const double before = processor_seconds();
    QElapsedTimer since_pull;
    since_pull.start();
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&cables] { note_warnings(cables); });
    look.start(50);
    wait(AFTER_MS);
    const double used = processor_seconds() - before;

    const auto slowest =
        std::minmax_element(cables.begin(), cables.end(), [](const auto& a, const auto& b) {
            return a->told_after < b->told_after;
        });
    const qint64 told = (*slowest.first)->told_after < 0 ? -1 : (*slowest.second)->told_after;
    std::printf("%.2f %lld %d %d\n", 100.0 * used * 1000.0 / double(since_pull.elapsed()), told,
                left->sent, seen);
    return 0;
}