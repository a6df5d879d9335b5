#include "watch/tells/child_run.h"

#include <QFile>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int KIND_MS = 2000;  // between the request to end and the end by force
constexpr int LOOK_MS = 100;   // where the system does not tell that a process has ended

/** Of an outer watch: what is not known of this event must not be told of another. */
bool is_ours(const char* variable)
{
    return qstrncmp(variable, "KEST_", 5) == 0;
}

/** All of the input, so that it is whole even if this process is killed the next moment. */
int input_handle(const QByteArray& input)
{
    const int handle = ::memfd_create("input", MFD_CLOEXEC);
    for (int at = 0; at < input.size();) {
        const ssize_t count = ::write(handle, input.constData() + at, size_t(input.size() - at));
        if (count <= 0)
            break;
        at += int(count);
    }
    ::lseek(handle, 0, SEEK_SET);
    return handle;
}

std::vector<char*> pointers_to(QList<QByteArray>& texts)
{
    std::vector<char*> pointers;
    for (QByteArray& text : texts)
        pointers.push_back(text.data());
    return pointers;
}

/**
 * In a group of its own, with the signals as a program expects them. The toolkit's own way is not taken:
 * there a child waits for its parent between fork and exec, for ever if the parent is killed just then.
 */
int spawn(const ChildOrder& order, pid_t& process)
{
    QList<QByteArray> words = {QFile::encodeName(order.program)};
    for (const QString& argument : order.arguments)
        words << QFile::encodeName(argument);
    QList<QByteArray> variables = order.variables;
    std::vector<char*> arguments = pointers_to(words);
    std::vector<char*> environment = pointers_to(variables);
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!is_ours(*variable))
            environment.push_back(*variable);
    arguments.push_back(nullptr);
    environment.push_back(nullptr);

    posix_spawnattr_t manner;
    ::posix_spawnattr_init(&manner);
    ::posix_spawnattr_setflags(&manner,
                               POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    sigset_t signal_set;
    ::sigemptyset(&signal_set);
    ::posix_spawnattr_setsigmask(&manner, &signal_set);
    ::sigaddset(&signal_set, SIGPIPE);
    ::posix_spawnattr_setsigdefault(&manner, &signal_set);
    posix_spawn_file_actions_t files;
    ::posix_spawn_file_actions_init(&files);
    const int input = input_handle(order.input);
    ::posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    ::posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    const int failure = ::posix_spawnp(&process, arguments[0], &files, &manner, arguments.data(),
                                       environment.data());
    ::close(input);
    ::posix_spawn_file_actions_destroy(&files);
    ::posix_spawnattr_destroy(&manner);
    return failure;
}

/** A process from its start to its end. */
class Child : public QObject
{
public:
    Child(const ChildOrder& child_order, QObject* parent,
          const std::function<void(const ChildEnd&)>& whom_to_tell);
    ~Child() override;
    void begin();

private:
    void listen();
    void look();
    void time_is_up();
    void settle(const ChildEnd& end);
    QString sentence_about(int wait_status) const;

    ChildOrder order;
    std::function<void(const ChildEnd&)> ended;
    QTimer limit;
    QTimer looks;
    int handle = -1;    ///< of the process; readable when it has ended
    pid_t process = 0;  ///< and its group; 0 if there is none to look after
    bool in_time = true;
};

Child::Child(const ChildOrder& child_order, QObject* parent,
             const std::function<void(const ChildEnd&)>& whom_to_tell)
    : QObject(parent), order(child_order), ended(whom_to_tell)
{
}

Child::~Child()
{
    if (process > 0) {
        ::kill(-process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }
    if (handle >= 0)
        ::close(handle);
}

void Child::begin()
{
    if (const int failure = spawn(order, process)) {
        process = 0;
        ChildEnd end;
        end.sentence = QString("cannot be started: %1").arg(qt_error_string(failure));
        settle(end);
        return;
    }
    connect(&limit, &QTimer::timeout, this, &Child::time_is_up);
    limit.setSingleShot(true);
    limit.start(order.seconds * 1000);
    listen();
}

void Child::listen()
{
    handle = int(::syscall(SYS_pidfd_open, process, 0));
    if (handle >= 0) {
        auto* const notifier = new QSocketNotifier(handle, QSocketNotifier::Read, this);
        connect(notifier, &QSocketNotifier::activated, this, &Child::look);
        return;
    }
    connect(&looks, &QTimer::timeout, this, &Child::look);
    looks.start(LOOK_MS);
}

void Child::time_is_up()
{
    ::kill(-process, in_time ? SIGTERM : SIGKILL);
    in_time = false;
    limit.start(KIND_MS);
}

void Child::look()
{
    int status = 0;
    if (process == 0 || ::waitpid(process, &status, WNOHANG) != process)
        return;
    // What it left behind in its group has no more time than it had itself.
    if (!in_time)
        ::kill(-process, SIGKILL);
    process = 0;
    ChildEnd end;
    end.started = true;
    end.in_time = in_time;
    end.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    end.sentence = sentence_about(status);
    settle(end);
}

QString Child::sentence_about(int wait_status) const
{
    if (!in_time)
        return QString("had not ended after %1 seconds").arg(order.seconds);
    if (WIFEXITED(wait_status))
        return QString("ended with status %1").arg(WEXITSTATUS(wait_status));
    return QString("was ended by signal %1").arg(WTERMSIG(wait_status));
}

void Child::settle(const ChildEnd& end)
{
    limit.stop();
    looks.stop();
    deleteLater();
    ended(end);
}
}  // namespace

void run_child(const ChildOrder& order, QObject* parent,
               const std::function<void(const ChildEnd&)>& ended)
{
    // Owned by the parent, and gone by itself when it is done.
    auto* const child = new Child(order, parent, ended);
    child->begin();
}
