#include "watch/follow.h"

#include "programs/common/exit_code.h"
#include "programs/common/signal_reader.h"
#include "programs/common/terminal.h"
#include "watch/tells/messenger.h"
#include "watch/watch_settings.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <sys/signalfd.h>

namespace
{
constexpr int LOOK_MS = 2000;

/** Ctrl-C, SIGTERM and SIGHUP as events, so that a look is never broken off. */
int end_signals()
{
    sigset_t ends;
    ::sigemptyset(&ends);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaddset(&ends, signal);
    ::sigprocmask(SIG_BLOCK, &ends, nullptr);
    return ::signalfd(-1, &ends, SFD_NONBLOCK | SFD_CLOEXEC);
}

}  // namespace

int follow(const WatchOptions& options)
{
    SignalReader ends(end_signals());
    QObject::connect(&ends, &SignalReader::sig_signal, [] { QCoreApplication::quit(); });
    const StartOfWatch start = start_of_watch(options);
    if (!start.error.isEmpty()) {
        tell(start.error);
        return EXIT_WRONG_ARGUMENTS;
    }
    for (const QString& sentence : start.missing)
        tell(sentence + " It is followed as soon as it is there.");
    Watch watch(start.settings);
    Messenger messenger(options.telling, watch_state_folder());
    QObject::connect(&messenger, &Messenger::sig_trouble, tell);
    QObject::connect(&messenger, &Messenger::sig_news,
                     [](const QString& line) { put(line + '\n'); });
    if (!messenger.begin()) {
        tell(messenger.error());
        return EXIT_SOMETHING_TO_TELL;
    }
    const auto look = [&] {
        const Moment moment = present_moment();
        messenger.hear(watch.look(moment), moment.time);
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, look);
    timer.start(LOOK_MS);
    look();
    QCoreApplication::exec();
    return EXIT_GOOD;
}
