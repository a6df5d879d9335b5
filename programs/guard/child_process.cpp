#include "guard/child_process.h"

#include <QVector>

#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
constexpr int WATCHED[] = {SIGCHLD, SIGTERM, SIGHUP, SIGINT, SIGQUIT};
// A reader of our words who goes, and a terminal that lets nobody in the background write, must not end
// or stop a guard.
constexpr int UNWANTED[] = {SIGPIPE, SIGTTOU};

/** In the child: becomes the program, or tells through the pipe why not. */
[[noreturn]] void become(char** words, int report, const SignalHeritage& heritage)
{
    heritage.hand_on();
    ::execvp(words[0], words);
    const int error = errno;
    static_cast<void>(!::write(report, &error, sizeof error));
    ::_exit(127);
}

int open_handle(pid_t process)
{
#ifdef SYS_pidfd_open
    return int(::syscall(SYS_pidfd_open, process, 0));
#else
    Q_UNUSED(process)
    return -1;
#endif
}

int borrow_descriptor(int handle, int descriptor)
{
#ifdef SYS_pidfd_getfd
    return int(::syscall(SYS_pidfd_getfd, handle, descriptor, 0));
#else
    Q_UNUSED(handle)
    Q_UNUSED(descriptor)
    return -1;
#endif
}
}  // namespace

bool Ending::well() const
{
    return signal == 0 && status == 0;
}

int Ending::exit_status() const
{
    return signal != 0 ? 128 + signal : status;
}

SignalHeritage::SignalHeritage()
{
    sigset_t watched;
    sigemptyset(&watched);
    for (int number = 1; number < NSIG; ++number)
        ::sigaction(number, nullptr, &before[number]);
    for (const int number : WATCHED)
        if (!is_ignored(number) || number == SIGCHLD)
            sigaddset(&watched, number);
    for (const int number : UNWANTED)
        std::signal(number, SIG_IGN);
    // Ignored, it would take the child's status with it.
    std::signal(SIGCHLD, SIG_DFL);
    ::sigprocmask(SIG_BLOCK, &watched, &mask_before);
    descriptor = ::signalfd(-1, &watched, SFD_NONBLOCK | SFD_CLOEXEC);
}

void SignalHeritage::hand_on() const
{
    for (const int number : {SIGPIPE, SIGTTOU, SIGCHLD})
        ::sigaction(number, &before[number], nullptr);
    ::sigprocmask(SIG_SETMASK, &mask_before, nullptr);
}

bool SignalHeritage::is_ignored(int signal) const
{
    return before[signal].sa_handler == SIG_IGN;
}

int ChildProcess::start(const QByteArrayList& words, const SignalHeritage& heritage)
{
    // Made before the fork: a child may do next to nothing between it and the program.
    QVector<char*> arguments;
    for (const QByteArray& word : words)
        arguments << const_cast<char*>(word.constData());
    arguments << nullptr;
    int report[2] = {-1, -1};
    if (::pipe2(report, O_CLOEXEC) != 0)
        return errno;
    start_time = QDateTime::currentDateTime();
    id = ::fork();
    int error = id < 0 ? errno : 0;
    if (id == 0)
        become(arguments.data(), report[1], heritage);
    ::close(report[1]);
    // Ends without a word when the program has taken over, as it closes the pipe.
    while (::read(report[0], &error, sizeof error) < 0 && errno == EINTR) {
    }
    ::close(report[0]);
    if (error != 0 && id > 0)
        ::waitpid(id, nullptr, 0);
    if (error != 0)
        id = -1;
    running = error == 0;
    if (running)
        handle = open_handle(id);
    return error;
}

bool ChildProcess::is_running() const
{
    return running;
}

bool ChildProcess::has_ended(Ending& ending)
{
    int status = 0;
    if (!running || ::waitpid(id, &status, WNOHANG) != id)
        return false;
    running = false;
    ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    if (handle >= 0)
        ::close(handle);
    handle = -1;
    return true;
}

void ChildProcess::send(int signal) const
{
    if (running)
        ::kill(id, signal);
}

int ChildProcess::waiting_bytes(int descriptor, dev_t device) const
{
    if (handle < 0)
        return -1;
    const int borrowed = borrow_descriptor(handle, descriptor);
    if (borrowed < 0)
        return -1;
    // The number may have come to mean another file since it was looked up.
    struct stat status = {};
    int bytes = -1;
    const bool same =
        ::fstat(borrowed, &status) == 0 && S_ISCHR(status.st_mode) && status.st_rdev == device;
    if (!same || ::ioctl(borrowed, FIONREAD, &bytes) != 0)
        bytes = -1;
    ::close(borrowed);
    return bytes;
}
