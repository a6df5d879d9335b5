#include "device/off_at_exit.h"

#include "device/kestrometer.h"
#include "simulator/pseudo_terminal.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QProcess>
#include <QTemporaryDir>

#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{
/** How a process ends whose instruments, or whose only one, have been told to discharge. */
using Ending = void (*)(Kestrometer& instrument);

void call_exit(Kestrometer&)
{
    std::exit(3);
}

void end_at_once(Kestrometer&)
{
    ::_exit(3);
}

/** The child that was forked has the open line too, and ends by exit() before its parent does. */
void end_a_fork(Kestrometer&)
{
    const pid_t child = ::fork();
    if (child == 0)
        std::exit(3);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::_exit(WEXITSTATUS(status));
}

/** A file takes the number of the closed line, and must stay empty. */
void close_the_line(Kestrometer& instrument)
{
    const int line = instrument.port.handle();
    instrument.port.close();
    ::dup2(::open("file", O_WRONLY | O_CREAT, 0600), line);
    std::exit(3);
}

/** Discharging is commanded until the line takes no more. */
void fill_the_line(Kestrometer& instrument)
{
    while (::write(instrument.port.handle(), "D", 1) == 1) {
    }
    std::exit(3);
}

const QMap<QString, Ending> ENDINGS = {{"exit", call_exit},
                                       {"end at once", end_at_once},
                                       {"end a fork", end_a_fork},
                                       {"close", close_the_line},
                                       {"fill", fill_the_line}};

int act_as_child(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QList<Kestrometer*> instruments;
    for (const QString& port : arguments.mid(2)) {
        instruments.append(new Kestrometer(port));
        instruments.last()->set_state(Discharging);
    }
    ENDINGS.value(arguments.at(1))(*instruments.first());
    return 0;
}
}  // namespace

/** What instruments are told by a process that ends without its destructors. */
class OffAtExitTest : public QObject
{
    Q_OBJECT

private slots:
    void an_open_line_is_commanded_off_once_data();
    void an_open_line_is_commanded_off_once();
    void so_is_each_of_several();
    void a_full_line_takes_off_all_the_same();
    void a_closed_line_is_forgotten();
};

namespace
{
/** Runs a process to its end, in its own folder. */
struct EndedProcess
{
    EndedProcess(const QString& ending, const QStringList& ports)
    {
        process.setWorkingDirectory(folder.path());
        process.start(QCoreApplication::applicationFilePath(),
                      QStringList{"tst_off_at_exit", ending} + ports);
        ended = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit;
    }

    QTemporaryDir folder;
    QProcess process;
    bool ended = false;
};

struct Line : PseudoTerminal
{
    Line()
    {
        QString error;
        if (!open(error))
            qFatal("%s", qPrintable(error));
    }
};
}  // namespace

void OffAtExitTest::an_open_line_is_commanded_off_once_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<QByteArray>("commands");
    QTest::newRow("by exit") << "exit" << QByteArray("DO");
    QTest::newRow("but not without it") << "end at once" << QByteArray("D");
    QTest::newRow("and not by a fork") << "end a fork" << QByteArray("D");
}

void OffAtExitTest::an_open_line_is_commanded_off_once()
{
    QFETCH(QString, ending);
    Line line;
    const EndedProcess run(ending, {line.port_name()});
    QVERIFY(run.ended);
    QCOMPARE(run.process.exitCode(), 3);
    QTEST(line.read(), "commands");
}

void OffAtExitTest::so_is_each_of_several()
{
    Line lines[3];
    const EndedProcess run(
        "exit", {lines[0].port_name(), lines[1].port_name(), "no_such_port", lines[2].port_name()});
    QVERIFY(run.ended);
    for (Line& line : lines)
        QCOMPARE(line.read(), QByteArray("DO"));
}

void OffAtExitTest::a_full_line_takes_off_all_the_same()
{
    Line line;
    const EndedProcess run("fill", {line.port_name()});
    QVERIFY(run.ended);
    QVERIFY(line.read().endsWith("DO"));
}

void OffAtExitTest::a_closed_line_is_forgotten()
{
    Line line;
    const EndedProcess run("close", {line.port_name()});
    QVERIFY(run.ended);
    QCOMPARE(run.process.exitCode(), 3);
    QCOMPARE(line.read(), QByteArray("D"));
    QCOMPARE(content_of(run.folder.filePath("file")), QByteArray());
}

static int tests_or_child(int argc, char** argv)
{
    if (argc > 2 && ENDINGS.contains(argv[1]))
        return act_as_child(argc, argv);
    return run_tests<QCoreApplication, OffAtExitTest>(argc, argv);
}

KEST_TEST_MAIN(tests_or_child)
#include "tst_off_at_exit.moc"
