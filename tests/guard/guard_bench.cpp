#include "guard_bench.h"

#include "programs/common/open_files.h"

#include "support/test_files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <csignal>
#include <grp.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace
{
constexpr uid_t NOBODY = 65534;

std::unique_ptr<QTemporaryDir> copies;

QString program_at(const char* built)
{
    return copies == nullptr ? QString(built) : copies->filePath(QFileInfo(built).fileName());
}

/** The folder of the build may be one that only root can enter. */
void copy_programs()
{
    copies = std::make_unique<QTemporaryDir>();
    for (const char* program : {KEST_GUARD, KEST_GUARDED_PROGRAM, KEST_SIMULATOR})
        QFile::copy(program, copies->filePath(QFileInfo(program).fileName()));
    // The one who runs them takes them away, too.
    if (::chown(QFile::encodeName(copies->path()).constData(), NOBODY, NOBODY) != 0)
        qFatal("Root cannot give a folder away.");
}
}  // namespace

void hear_all_signals()
{
    for (const int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM})
        std::signal(number, SIG_DFL);
}

void become_the_user_asked_for()
{
    if (!qEnvironmentVariableIsSet("KEST_TEST_AS_ORDINARY_USER") || ::getuid() != 0)
        return;
    copy_programs();
    if (::setgroups(0, nullptr) != 0 || ::setresgid(NOBODY, NOBODY, NOBODY) != 0 ||
        ::setresuid(NOBODY, NOBODY, NOBODY) != 0)
        qFatal("Root cannot become an ordinary user.");
    // A change of user forbids tracing, and the leak checker traces its own process at the end.
    ::prctl(PR_SET_DUMPABLE, 1);
}

QString guard_program()
{
    return program_at(KEST_GUARD);
}

QString guarded_program()
{
    return program_at(KEST_GUARDED_PROGRAM);
}

QString simulator_program()
{
    return program_at(KEST_SIMULATOR);
}

GuardBench::GuardBench() : environment(QProcessEnvironment::systemEnvironment())
{
    environment.insert("HOME", folder.path());
    environment.insert("XDG_STATE_HOME", folder.filePath("state"));
    environment.insert("XDG_DATA_HOME", folder.filePath("data"));
    environment.insert("XDG_CONFIG_HOME", folder.filePath("config"));
    environment.insert("XDG_RUNTIME_DIR", folder.path());
    environment.insert("TMPDIR", folder.path());
    environment.remove("DBUS_SESSION_BUS_ADDRESS");
}

GuardBench::~GuardBench()
{
    signal_guard(SIGCONT);
    if (guard.state() == QProcess::Running)
        kill_program();
    guard.closeWriteChannel();
    if (guard.state() != QProcess::NotRunning && !guard.waitForFinished(PATIENCE_MS))
        guard.kill();
    guard.waitForFinished(PATIENCE_MS);
}

Instrument& GuardBench::add_instrument(const QStringList& options)
{
    const QString number = QString::number(instruments.size());
    const QStringList usual = {"--id", QString::number(7 + int(instruments.size())), "--rate",
                               "20"};
    instruments.push_back(
        std::make_unique<Instrument>(folder.filePath("record" + number), usual + options));
    return *instruments.back();
}

void GuardBench::start_with(const QStringList& arguments)
{
    guard.setProcessEnvironment(environment);
    guard.start(guard_program(), arguments);
}

bool GuardBench::start(const QStringList& guard_options)
{
    start_with(guard_options + QStringList{"--", guarded_program()});
    return hear_of_program();
}

bool GuardBench::start_by(const QString& other, const QStringList& arguments)
{
    guard.setProcessEnvironment(environment);
    guard.start(other, arguments + QStringList{guard_program(), "--", guarded_program()});
    return hear_of_program();
}

bool GuardBench::hear_of_program()
{
    const QList<QByteArray> words = program_says("process ").split(' ');
    program = words.first().toInt();
    program_name = words.value(1);
    return program > 0;
}

bool GuardBench::hold_all(const QByteArray& letter)
{
    for (const auto& instrument : instruments)
        order("hold " + instrument->port() + " " + letter);
    for (const auto& instrument : instruments) {
        Q_UNUSED(instrument)
        if (program_says(letter == "-" ? "opened " : "ready ").isEmpty())
            return false;
    }
    return true;
}

void GuardBench::order(const QByteArray& words)
{
    guard.write(words + "\n");
    guard.waitForBytesWritten(PATIENCE_MS);
}

QByteArray GuardBench::program_says(const QByteArray& start)
{
    guard.setReadChannel(QProcess::StandardOutput);
    for (;;) {
        while (!guard.canReadLine())
            if (!guard.waitForReadyRead(PATIENCE_MS))
                return {};
        const QByteArray line = guard.readLine().trimmed();
        if (line.startsWith(start))
            return line.mid(start.size());
    }
}

bool GuardBench::guard_says(const QByteArray& text)
{
    guard.setReadChannel(QProcess::StandardError);
    said += guard.readAllStandardError();
    while (!said.contains(text)) {
        if (!guard.waitForReadyRead(PATIENCE_MS))
            return false;
        said += guard.readAllStandardError();
    }
    return true;
}

QByteArray GuardBench::log() const
{
    return content_of(folder.filePath("state/kest-guard/kest-guard.log"));
}

bool GuardBench::log_has(const QByteArray& text) const
{
    return QTest::qWaitFor([this, &text] { return log().contains(text); }, PATIENCE_MS);
}

bool SwitchingBench::begin()
{
    add_instrument();
    if (!start() || !hold_all())
        return false;
    instruments[0]->set_fault("ignore-commands");
    kill_program();
    return guard_says(" does not obey: ");
}

QByteArray without_haste(const QByteArray& said)
{
    static const QRegularExpression haste(" was still \\w+; it is off since \\d\\d:\\d\\d:\\d\\d:");
    return QString::fromUtf8(said).replace(haste, " is off:").toUtf8();
}

void GuardBench::kill_program(int signal) const
{
    signal_process(program, signal);
}

void GuardBench::signal_guard(int signal) const
{
    signal_process(guard.processId(), signal);
}

bool GuardBench::is_an_instrument_s(const QString& path) const
{
    return std::any_of(instruments.begin(), instruments.end(),
                       [&path](const auto& instrument) { return instrument->path == path; });
}

bool GuardBench::stop_guard_between_looks() const
{
    const SystemRoots roots;
    const pid_t process = pid_t(guard.processId());
    return QTest::qWaitFor(
        [this, &roots, process] {
            signal_guard(SIGSTOP);
            if (state_of_process(process, roots) != 'T')
                return false;
            const OpenFiles files = open_files_of(process, roots);
            const bool between =
                std::none_of(files.devices.begin(), files.devices.end(),
                             [this](const auto& file) { return is_an_instrument_s(file.path); });
            if (!between)
                signal_guard(SIGCONT);
            return between;
        },
        PATIENCE_MS);
}

bool GuardBench::ends()
{
    if (guard.state() != QProcess::NotRunning && !guard.waitForFinished(PATIENCE_MS))
        return false;
    said += guard.readAllStandardError();
    return true;
}

bool GuardBench::ends_all_off()
{
    return ends_with(128 + SIGKILL) && said.endsWith("kest-guard: All is off.\n");
}

bool GuardBench::ends_with(int status)
{
    if (!ends())
        return false;
    if (guard.exitStatus() == QProcess::NormalExit && guard.exitCode() == status)
        return true;
    qWarning("The guard ended with %d: %s", guard.exitCode(), said.constData());
    return false;
}
