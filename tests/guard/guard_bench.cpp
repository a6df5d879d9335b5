#include "guard_bench.h"

#include "support/test_files.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

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
    QFile::setPermissions(copies->path(), QFile::Permissions(0x7755));
}
}  // namespace

void become_the_user_asked_for()
{
    if (!qEnvironmentVariableIsSet("KEST_TEST_AS_ORDINARY_USER") || ::getuid() != 0)
        return;
    copy_programs();
    if (::setgroups(0, nullptr) != 0 || ::setresgid(NOBODY, NOBODY, NOBODY) != 0 ||
        ::setresuid(NOBODY, NOBODY, NOBODY) != 0)
        qFatal("Root cannot become an ordinary user.");
    copies->setAutoRemove(false);
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

Instrument::Instrument(const QString& record_path, const QStringList& options)
    : record_file(record_path)
{
    process.start(simulator_program(),
                  QStringList{"--exit-with-stdin", "--record", record_path} + options);
    while (!process.canReadLine() && process.waitForReadyRead(PATIENCE_MS)) {
    }
    path = QString::fromLocal8Bit(process.readLine()).trimmed();
}

Instrument::~Instrument()
{
    process.closeWriteChannel();
    process.waitForFinished(PATIENCE_MS);
}

QByteArray Instrument::port() const
{
    return path.mid(5).toLocal8Bit();
}

void Instrument::set_fault(const QByteArray& words)
{
    process.write(words + "\n");
    process.waitForBytesWritten(PATIENCE_MS);
}

QString Instrument::next_path()
{
    while (!process.canReadLine() && process.waitForReadyRead(PATIENCE_MS)) {
    }
    return QString::fromLocal8Bit(process.readLine()).trimmed();
}

void Instrument::stop() const
{
    ::kill(pid_t(process.processId()), SIGSTOP);
}

void Instrument::go_on() const
{
    ::kill(pid_t(process.processId()), SIGCONT);
}

QVector<Instrument::Row> Instrument::record() const
{
    QVector<Row> rows;
    for (const QByteArray& line : content_of(record_file).split('\n')) {
        const QList<QByteArray> columns = line.split('\t');
        if (columns.size() == 3)
            rows.append({columns[0].toLongLong(), columns[1].at(0), columns[2]});
    }
    return rows;
}

QByteArray Instrument::story() const
{
    QByteArrayList words;
    for (const Row& row : record())
        words << row.what;
    return words.join(' ');
}

bool Instrument::comes_to(const QByteArray& end) const
{
    return QTest::qWaitFor([this, &end] { return story().endsWith(end); }, PATIENCE_MS);
}

char Instrument::state() const
{
    const QVector<Row> rows = record();
    return rows.isEmpty() ? 'O' : rows.last().state;
}

qint64 Instrument::lines_until_told_off() const
{
    qint64 let_go = -1;
    for (const Row& row : record()) {
        if (let_go < 0 && row.what == "closed")
            let_go = row.lines;
        if (let_go >= 0 && row.what == "4F")
            return row.lines - let_go;
    }
    return -1;
}

GuardBench::GuardBench() : environment(QProcessEnvironment::systemEnvironment())
{
    environment.insert("HOME", folder.path());
    environment.insert("XDG_STATE_HOME", folder.filePath("state"));
    environment.insert("XDG_DATA_HOME", folder.filePath("data"));
    environment.insert("XDG_CONFIG_HOME", folder.filePath("config"));
    environment.insert("XDG_RUNTIME_DIR", folder.path());
    environment.remove("DBUS_SESSION_BUS_ADDRESS");
}

GuardBench::~GuardBench()
{
    if (program > 0 && guard.state() == QProcess::Running)
        kill_program();
    guard.closeWriteChannel();
    if (guard.state() != QProcess::NotRunning && !guard.waitForFinished(PATIENCE_MS))
        guard.kill();
    guard.waitForFinished(PATIENCE_MS);
}

Instrument& GuardBench::add_instrument(const QStringList& options)
{
    const QString number = QString::number(instruments.size());
    const QStringList usual = {"--id", QString::number(7 + int(instruments.size())), "--rate", "2"};
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

void GuardBench::kill_program(int signal) const
{
    ::kill(program, signal);
}

bool GuardBench::ends_with(int status)
{
    if (guard.state() != QProcess::NotRunning && !guard.waitForFinished(PATIENCE_MS))
        return false;
    said += guard.readAllStandardError();
    if (guard.exitStatus() == QProcess::NormalExit && guard.exitCode() == status)
        return true;
    qWarning("The guard ended with %d: %s", guard.exitCode(), said.constData());
    return false;
}
