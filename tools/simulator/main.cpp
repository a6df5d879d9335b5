#include "simulator/line_input.h"
#include "simulator/options.h"
#include "simulator/simulator_run.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace
{
constexpr int BAD_SYSTEM = 1;
constexpr int BAD_ARGUMENTS = 2;

/** Else a port or a signal would get the number of a standard stream that the caller has closed. */
void fill_standard_streams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (::fcntl(stream, F_GETFD) < 0)
            ::open("/dev/null", O_RDWR);
}

/** A descriptor that becomes readable when the process is asked to end. */
int catch_ending_signals()
{
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t ending;
    sigemptyset(&ending);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ending, number);
    sigprocmask(SIG_BLOCK, &ending, nullptr);
    return ::signalfd(-1, &ending, SFD_NONBLOCK | SFD_CLOEXEC);
}
}  // namespace

int main(int argc, char* argv[])
{
    fill_standard_streams();
    const int ending = catch_ending_signals();
    QCoreApplication application(argc, argv);
    Options options;
    QString text;
    const OptionsResult result = read_options(QCoreApplication::arguments(), options, text);
    if (result == OptionsResult::Help) {
        std::fputs(qPrintable(text), stdout);
        return 0;
    }
    QVector<ReplayLine> recording;
    const bool good =
        result == OptionsResult::Run &&
        (options.recording.isEmpty() || read_recording(options.recording, recording, text));
    if (!good) {
        complain(text);
        return BAD_ARGUMENTS;
    }

    SimulatorRun run(options);
    run.play(recording);
    if (!run.start(text)) {
        complain(text);
        return BAD_SYSTEM;
    }
    QSocketNotifier asked_to_end(ending, QSocketNotifier::Read);
    LineInput input(STDIN_FILENO);
    QObject::connect(&asked_to_end, &QSocketNotifier::activated, &application,
                     &QCoreApplication::quit);
    QObject::connect(&run, &SimulatorRun::sig_end, &application, &QCoreApplication::quit);
    QObject::connect(&input, &LineInput::sig_line, &run, &SimulatorRun::set_fault_by_line);
    if (options.exit_with_stdin)
        QObject::connect(&input, &LineInput::sig_end, &run, &SimulatorRun::end_when_deserted);
    return QCoreApplication::exec();
}
