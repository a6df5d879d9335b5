#include "app/main_window.h"
#include "app/startup.h"

#include "common/console.h"
#include "support/modal_answer.h"
#include "support/profile_file.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QApplication>
#include <QProcess>
#include <QSharedMemory>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <unistd.h>

namespace
{
const QString GUARD_KEY = "5bd399cd-d3b0-49de-8a69-b9fc02905849";
const QByteArray FIRST_LINE = "Q_ASSERT is disabled; unable to test library functions.\n";
const QString PROFILES = "tst_startup/battery_profiles.txt";
const char* const START_WINDOW = "--start-window";
const char* const ASK_THE_GUARD = "--ask-the-guard";

/** Dismisses the boxes of this process and writes each to standard output. */
struct BoxReporter
{
    BoxReporter()
    {
        answers.handle([this](QWidget* box) {
            const SeenBox& seen = answers.seen.back();
            print_to_console(seen.caption + "|" + seen.text + "\n");
            static_cast<QDialog*>(box)->reject();
        });
    }

    ModalAnswer answers;
};

/** What a second process of this executable does; see main. */
int act_as_child(const char* what)
{
    BoxReporter reporter;
    if (std::strcmp(what, START_WINDOW) == 0)
        MainWindow window(nullptr);
    else
        prevent_multiple_instances();
    print_to_console("running\n");
    return 0;
}

/** A process whose standard output is a pipe that nobody reads any more. */
class UnheardProcess : public QProcess
{
protected:
    void setupChildProcess() override
    {
        int ends[2] = {};
        if (::pipe(ends) != 0)
            ::_exit(1);
        ::close(ends[0]);
        ::dup2(ends[1], STDOUT_FILENO);
    }
};

struct Outcome
{
    int status = -1;
    QByteArray output;
};

Outcome run_child(const char* what, const QString& data_home)
{
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_DATA_HOME", data_home);
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), {"tst_startup", what});
    Outcome outcome;
    if (child.waitForFinished() && child.exitStatus() == QProcess::NormalExit)
        outcome.status = child.exitCode();
    outcome.output = child.readAllStandardOutput();
    return outcome;
}

void start_program(QProcess& process, const QTemporaryDir& home)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("XDG_DATA_HOME", home.path());
    process.setProcessEnvironment(environment);
    process.start(KEST_PROGRAM, QStringList());
}

void put_file(const QString& path, const QByteArray& content)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(write_file(path, content));
}
}  // namespace

/** How the process begins, and when it refuses to. */
class StartupTest : public QObject
{
    Q_OBJECT

private slots:
    void a_first_start_writes_settings_and_profiles();
    void a_malformed_settings_file_ends_the_process_data();
    void a_malformed_settings_file_ends_the_process();
    void a_settings_directory_that_cannot_be_made_ends_the_process();
    void malformed_profiles_end_the_process_in_silence_data();
    void malformed_profiles_end_the_process_in_silence();
    void unreadable_profiles_end_the_process_in_silence();
    void refused_settings_leave_the_profiles_alone();
    void odd_profiles_do_not_keep_the_program_from_starting();
    void the_library_test_says_that_it_is_disabled();
    void two_copies_of_the_program_run_together();
    void a_reader_of_its_output_that_has_gone_does_not_end_the_program();
    void signals_close_the_program_as_its_window_does_data();
    void signals_close_the_program_as_its_window_does();
    void the_guard_lets_a_lone_copy_through();
    void the_guard_ends_a_second_copy();
};

void StartupTest::a_first_start_writes_settings_and_profiles()
{
    const QTemporaryDir home;
    const Outcome outcome = run_child(START_WINDOW, home.path());
    QCOMPARE(outcome.output, QByteArray("running\n"));
    QCOMPARE(outcome.status, 0);
    QCOMPARE(content_of(home.filePath("tst_startup/kestrometer.cfg")),
             QByteArray("[misc]\nchart_refresh_rate_hz=3\n\n"));
    QCOMPARE(content_of(home.filePath(PROFILES)), FIRST_PROFILE_FILE);
}

void StartupTest::a_malformed_settings_file_ends_the_process_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("a comment") << QByteArray("[misc]\n; a note\n");
    QTest::newRow("a variable before the first section") << QByteArray("a=b\n[misc]\n");
    QTest::newRow("a section without its bracket") << QByteArray("[misc\n");
    QTest::newRow("a lone word") << QByteArray("[misc]\nchart_refresh_rate_hz\n");
    QTest::newRow("NULs") << QByteArray("\0\0\0\0", 4);
    QTest::newRow("invalid UTF-8") << QByteArray("[misc]\n\xFF\xFE\xFD\n");
}

void StartupTest::a_malformed_settings_file_ends_the_process()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir home;
    const QString path = home.filePath("tst_startup/kestrometer.cfg");
    put_file(path, content);
    const Outcome outcome = run_child(START_WINDOW, home.path());
    QCOMPARE(outcome.output, QString("Error|Unable to read %1.\n").arg(path).toUtf8());
    QCOMPARE(outcome.status, 1);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), content);
}

void StartupTest::a_settings_directory_that_cannot_be_made_ends_the_process()
{
    const QTemporaryDir home;
    const QString file = home.filePath("a_file");
    put_file(file, "in the way");
    const Outcome outcome = run_child(START_WINDOW, file);
    QCOMPARE(
        outcome.output,
        QString("Error|Cannot create settings directory (%1/tst_startup).\n").arg(file).toUtf8());
    QCOMPARE(outcome.status, 1);
}

void StartupTest::malformed_profiles_end_the_process_in_silence_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("a variable before the first header") << QByteArray("number_of_cycles=1\n");
    QTest::newRow("an unknown key") << QByteArray("[Pack]\ncolour=red\n");
    QTest::newRow("a comment of another kind") << QByteArray("[Pack]\n; a=b\n");
    QTest::newRow("no number") << QByteArray("[Pack]\nlow_voltage_cutoff=low\n");
    QTest::newRow("a decimal comma") << QByteArray("[Pack]\nmax_charge_time_hr=1,5\n");
    QTest::newRow("beyond 32 bits") << QByteArray("[Pack]\nnumber_of_cycles=4294967296\n");
    QTest::newRow("a small yes") << QByteArray("[Pack]\ndetect_full_charge=yes\n");
    QTest::newRow("behind a good one") << FIRST_PROFILE_FILE + "=\n";
}

void StartupTest::malformed_profiles_end_the_process_in_silence()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir home;
    put_file(home.filePath(PROFILES), content);
    const Outcome outcome = run_child(START_WINDOW, home.path());
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.status, 1);
    QCOMPARE(content_of(home.filePath(PROFILES)), content);
}

void StartupTest::unreadable_profiles_end_the_process_in_silence()
{
    const QTemporaryDir home;
    QVERIFY(QDir().mkpath(home.filePath(PROFILES)));
    const Outcome outcome = run_child(START_WINDOW, home.path());
    QCOMPARE(outcome.output, QByteArray());
    QCOMPARE(outcome.status, 1);
}

void StartupTest::refused_settings_leave_the_profiles_alone()
{
    const QTemporaryDir home;
    put_file(home.filePath("tst_startup/kestrometer.cfg"), "a=b\n");
    QCOMPARE(run_child(START_WINDOW, home.path()).status, 1);
    QVERIFY(!QFile::exists(home.filePath(PROFILES)));
}

void StartupTest::odd_profiles_do_not_keep_the_program_from_starting()
{
    const QTemporaryDir home;
    put_file(home.filePath(PROFILES), "words\n'colour=red\n[]\n[a]b]\nnumber_of_cycles=0x10\n");
    const Outcome outcome = run_child(START_WINDOW, home.path());
    QCOMPARE(outcome.output, QByteArray("running\n"));
    QCOMPARE(outcome.status, 0);
}

void StartupTest::the_library_test_says_that_it_is_disabled()
{
    QVERIFY(test_library());
}

void StartupTest::two_copies_of_the_program_run_together()
{
    const QTemporaryDir home;
    QProcess copies[2];
    for (QProcess& copy : copies)
        start_program(copy, home);
    for (QProcess& copy : copies) {
        QTRY_VERIFY_WITH_TIMEOUT(copy.canReadLine(), 30000);
        QCOMPARE(copy.readLine(), FIRST_LINE);
    }
    for (QProcess& copy : copies)
        QCOMPARE(copy.state(), QProcess::Running);
    for (QProcess& copy : copies) {
        copy.kill();
        QVERIFY(copy.waitForFinished());
    }
}

void StartupTest::a_reader_of_its_output_that_has_gone_does_not_end_the_program()
{
    const QTemporaryDir home;
    UnheardProcess program;
    start_program(program, home);
    const QString settings = home.filePath("kest-battery-tester/kestrometer.cfg");
    // Written behind the first line of output.
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(settings) || program.state() == QProcess::NotRunning,
                             30000);
    QVERIFY(QFile::exists(settings));
    QCOMPARE(program.state(), QProcess::Running);
    program.kill();
    QVERIFY(program.waitForFinished());
}

void StartupTest::signals_close_the_program_as_its_window_does_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("end of the session") << SIGTERM;
    QTest::newRow("the terminal goes") << SIGHUP;
}

void StartupTest::signals_close_the_program_as_its_window_does()
{
    QFETCH(int, signal);
    const QTemporaryDir home;
    QProcess program;
    start_program(program, home);
    QTRY_VERIFY_WITH_TIMEOUT(program.canReadLine(), 30000);
    QCOMPARE(::kill(pid_t(program.processId()), signal), 0);
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QCOMPARE(program.exitCode(), 0);
}

void StartupTest::the_guard_lets_a_lone_copy_through()
{
    const QTemporaryDir home;
    const Outcome outcome = run_child(ASK_THE_GUARD, home.path());
    QCOMPARE(outcome.output, QByteArray("running\n"));
    QCOMPARE(outcome.status, 0);
}

void StartupTest::the_guard_ends_a_second_copy()
{
    QSharedMemory other_copy(GUARD_KEY);
    QVERIFY(other_copy.create(512));
    const QTemporaryDir home;
    const Outcome outcome = run_child(ASK_THE_GUARD, home.path());
    QCOMPARE(outcome.output, QByteArray("Error|The program is already running.\n"));
    QCOMPARE(outcome.status, 0);
}

static int tests_or_child(int argc, char** argv)
{
    if (argc == 2 &&
        (std::strcmp(argv[1], START_WINDOW) == 0 || std::strcmp(argv[1], ASK_THE_GUARD) == 0)) {
        const QApplication application(argc, argv);
        return act_as_child(argv[1]);
    }
    return run_tests<QApplication, StartupTest>(argc, argv);
}

KEST_TEST_MAIN(tests_or_child)

#include "tst_startup.moc"
