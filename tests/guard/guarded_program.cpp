// A program such as a guard watches: it holds instruments as the application does, and dies on command.

#include "device/kestrometer.h"
#include "device/reset_command.h"
#include "station/test_station.h"
#include "support/station_bench.h"

#include <QApplication>
#include <QLineEdit>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <memory>
#include <poll.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

namespace
{
// Kept for ever: a program that ends in the middle closes nothing.
std::vector<std::unique_ptr<Kestrometer>>& instruments =
    *new std::vector<std::unique_ptr<Kestrometer>>;

void say(const QByteArray& text)
{
    std::printf("%s\n", text.constData());
    std::fflush(stdout);
}

/** With the system's own handlers: those of a sanitizer would turn the signal into a status. */
void let_the_system_handle(int signal)
{
    std::signal(signal, SIG_DFL);
}

void die_of_a_bus_error()
{
    let_the_system_handle(SIGBUS);
    QTemporaryDir folder;
    std::FILE* const empty = std::fopen(qPrintable(folder.filePath("empty")), "w+");
    void* const page = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, fileno(empty), 0);
    *static_cast<volatile char*>(page) = 1;
}

void die_of_a_bad_address()
{
    let_the_system_handle(SIGSEGV);
    // Written by the processor, not by checked code: a sanitizer would see a null pointer first.
    ::raise(SIGSEGV);
}

void die_for_want_of_memory()
{
    const rlimit none = {0, 0};
    ::setrlimit(RLIMIT_AS, &none);
    std::vector<std::unique_ptr<char[]>> hoard;
    for (;;)
        hoard.push_back(std::make_unique<char[]>(1 << 24));
}

/** Reads nothing and does nothing, but does not outlive the test. */
[[noreturn]] void wait_for_the_end_of_orders()
{
    pollfd orders = {STDIN_FILENO, 0, 0};
    ::poll(&orders, 1, -1);
    std::_Exit(0);
}

void leave_a_fork_behind()
{
    if (const pid_t fork_id = ::fork(); fork_id > 0) {
        say("fork " + QByteArray::number(fork_id));
        return;
    }
    wait_for_the_end_of_orders();
}

void freeze()
{
    say("frozen");
    wait_for_the_end_of_orders();
}

void say_that_it_was_heard(int)
{
    static_cast<void>(!::write(STDOUT_FILENO, "heard\n", 6));
}

/** As the application does: the first signal of a kind is heard, the second is the system's. */
void hear_once(int signal, void (*handler)(int))
{
    struct sigaction hearing = {};
    hearing.sa_handler = handler;
    hearing.sa_flags = SA_RESETHAND;
    ::sigaction(signal, &hearing, nullptr);
}

KestrometerState state_of(const QByteArray& letter)
{
    return state_from_letter(QChar(letter.at(0)));
}

/** Says "ready" when the instrument is as commanded. */
void announce(Kestrometer& instrument, KestrometerState state)
{
    auto* const watcher = new QObject(&instrument);
    QObject::connect(&instrument, &Kestrometer::sig_measurement, watcher,
                     [&instrument, state, watcher] {
                         if (instrument.state != state)
                             return;
                         say("ready " + instrument.get_port_name().toLocal8Bit());
                         watcher->deleteLater();
                     });
}

/** "hold pts/3 D", "hold pts/3 -" without a command. */
void hold(const QByteArray& port, const QByteArray& letter)
{
    instruments.push_back(std::make_unique<Kestrometer>(QString::fromLocal8Bit(port)));
    Kestrometer& instrument = *instruments.back();
    if (letter == "-") {
        say("opened " + port);
        return;
    }
    announce(instrument, state_of(letter));
    instrument.set_state(state_of(letter));
}

/** "phase pts/3 5": a station of the application in this phase. */
void enter_phase(const QByteArray& port, int wanted)
{
    static QTemporaryDir folder;
    load_test_settings(folder.path());
    auto* const station = new TestStation(nullptr, new Kestrometer(QString::fromLocal8Bit(port)));
    for (const char* edit : {"leProfileName", "leSerialNumber"}) {
        auto* const line = station->findChild<QLineEdit*>(edit);
        line->setText("1042");
        emit line->textEdited("1042");
    }
    station->begin_log();
    // No line reaches the station, so that no phase comes to its end.
    QObject::disconnect(station->kestrometer, &Kestrometer::sig_measurement, station, nullptr);
    for (int phase = PHASE_IDLE; phase <= wanted; ++phase)
        station->set_phase(Phase(phase), "it is its turn");
    announce(*station->kestrometer, station->kestrometer->requested_state);
}

void close_port(const QByteArray& port)
{
    for (auto& instrument : instruments)
        if (instrument != nullptr && instrument->get_port_name() == port)
            instrument.reset();
    say("closed " + port);
}

void send(const QByteArray& bytes)
{
    for (const auto& instrument : instruments)
        if (instrument != nullptr)
            instrument->send_command(bytes);
}

void obey(const QByteArray& line)
{
    const QList<QByteArray> words = line.split(' ');
    const QByteArray& order = words.first();
    if (order == "hold")
        hold(words[1], words[2]);
    else if (order == "phase")
        enter_phase(words[1], words[2].toInt());
    else if (order == "close")
        close_port(words[1]);
    else if (order == "segv")
        die_of_a_bad_address();
    else if (order == "bus")
        die_of_a_bus_error();
    else if (order == "abort")
        std::abort();
    else if (order == "memory")
        die_for_want_of_memory();
    else if (order == "exit")
        std::_Exit(words[1].toInt());  // exit() would switch off first
    else if (order == "fork")
        leave_a_fork_behind();
    else if (order == "freeze")
        freeze();
    else if (order == "linger") {
        hear_once(SIGHUP, say_that_it_was_heard);
        say("lingers");
    } else if (order == "half-a-reset") {
        send(RESET_COMMAND.left(4));
        say("half sent");
    } else if (order == "bootloader")
        send("U");
    else
        qFatal("This order means nothing: %s", line.constData());
}

void read_orders()
{
    char chunk[4096];
    const ssize_t size = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (size <= 0)
        std::_Exit(0);
    for (const QByteArray& line : QByteArray(chunk, int(size)).split('\n'))
        if (!line.isEmpty())
            obey(line);
}

void end_well(int)
{
    std::_Exit(0);
}
}  // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    hear_once(SIGHUP, end_well);
    QSocketNotifier orders(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, &orders, read_orders);
    say("process " + QByteArray::number(::getpid()) + " " + QByteArray(argv[0]));
    return QApplication::exec();
}
