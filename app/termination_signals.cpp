#include "app/termination_signals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace
{
int wake_up_pipe[2] = {-1, -1};

/** A handler may do next to nothing: the event loop hears of the signal through a pipe. */
void wake_up(int)
{
    const char byte = 0;
    // Nothing to do about a full pipe: the loop will wake up all the same.
    static_cast<void>(!::write(wake_up_pipe[1], &byte, 1));
}

void handle(int signal)
{
    struct sigaction before = {};
    ::sigaction(signal, nullptr, &before);
    if (before.sa_handler == SIG_IGN)
        return;
    struct sigaction action = {};
    action.sa_handler = wake_up;
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    ::sigaction(signal, &action, nullptr);
}
}  // namespace

void close_on_termination_signals(QCoreApplication& application)
{
    if (::pipe2(wake_up_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        return;
    auto* const notifier =
        new QSocketNotifier(wake_up_pipe[0], QSocketNotifier::Read, &application);
    QObject::connect(notifier, &QSocketNotifier::activated, &application, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    for (const int signal : {SIGHUP, SIGINT, SIGTERM})
        handle(signal);
}
