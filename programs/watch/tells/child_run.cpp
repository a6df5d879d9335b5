#include "watch/tells/child_run.h"

#include <QProcess>
#include <QTimer>

#include <csignal>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int KIND_MS = 2000;  // between the request to end and the end by force

/** Of an outer watch: what is not known of this event must not be told of another. */
bool is_ours(const char* variable)
{
    return qstrncmp(variable, "KEST_", 5) == 0;
}

/** A process in a group of its own, with variables in bytes, which QProcess takes in texts only. */
class Child : public QProcess
{
public:
    Child(const ChildOrder& child_order, QObject* parent);
    ~Child() override;
    void begin(const std::function<void(const ChildEnd&)>& ended);

protected:
    void setupChildProcess() override;

private:
    void time_is_up();
    void signal_group(int signal) const;
    ChildEnd end() const;

    ChildOrder order;
    std::vector<char*> environment;  ///< made before the fork: behind it nothing may be allocated
    QTimer limit;
    pid_t group = 0;
    bool in_time = true;
    bool settled = false;
};

Child::Child(const ChildOrder& child_order, QObject* parent) : QProcess(parent), order(child_order)
{
    for (QByteArray& variable : order.variables)
        environment.push_back(variable.data());
    for (char** variable = environ; *variable != nullptr; ++variable)
        if (!is_ours(*variable))
            environment.push_back(*variable);
    environment.push_back(nullptr);
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
    setStandardOutputFile(QProcess::nullDevice());
}

Child::~Child()
{
    disconnect();
    if (state() != QProcess::NotRunning)
        signal_group(SIGKILL);
    waitForFinished(KIND_MS);
}

void Child::setupChildProcess()
{
    ::setsid();
    environ = environment.data();
    // The watch keeps its signals for its own loop; a program of somebody else expects them.
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void Child::signal_group(int signal) const
{
    if (group > 0)
        ::kill(-group, signal);
}

void Child::time_is_up()
{
    signal_group(in_time ? SIGTERM : SIGKILL);
    in_time = false;
    limit.start(KIND_MS);
}

ChildEnd Child::end() const
{
    ChildEnd result;
    result.started = error() != QProcess::FailedToStart;
    result.in_time = in_time;
    if (result.started && exitStatus() == QProcess::NormalExit)
        result.status = exitCode();
    if (!result.started)
        result.sentence = QString("cannot be started: %1").arg(errorString());
    else if (!in_time)
        result.sentence = QString("had not ended after %1 seconds").arg(order.seconds);
    else if (result.status < 0)
        result.sentence = QString("was ended by signal %1").arg(exitCode());
    else
        result.sentence = QString("ended with status %1").arg(result.status);
    return result;
}

void Child::begin(const std::function<void(const ChildEnd&)>& ended)
{
    const auto settle = [this, ended] {
        if (settled)
            return;
        settled = true;
        deleteLater();
        // What it left behind in its group has no more time than it had itself.
        if (!in_time)
            signal_group(SIGKILL);
        ended(end());
    };
    connect(this, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, settle);
    connect(this, &QProcess::errorOccurred, this, [settle](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            settle();
    });
    connect(&limit, &QTimer::timeout, this, &Child::time_is_up);
    limit.setSingleShot(true);
    limit.start(order.seconds * 1000);
    start(order.program, order.arguments);
    group = pid_t(processId());
    write(order.input);
    closeWriteChannel();
}
}  // namespace

void run_child(const ChildOrder& order, QObject* parent,
               const std::function<void(const ChildEnd&)>& ended)
{
    // Owned by the parent, and gone by itself when it is done.
    auto* const child = new Child(order, parent);
    child->begin(ended);
}
