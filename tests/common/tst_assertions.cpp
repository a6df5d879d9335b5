#include "common/assertions.h"
#include "support/test_program.h"

#include <QProcess>
#include <QtTest>

#include <cstring>

namespace
{
/** What this class of tests does instead of the tests when it is called with "--assert". */
int run_assertion(bool condition, bool fatal)
{
    assert_fatal(condition, "axis must be top or bottom", fatal);
    std::puts("still running");
    return 0;
}

struct Outcome
{
    int exit_code = -1;
    QByteArray output;
};

/** Runs this executable once more, with `input` on its standard input, to its end. */
Outcome run_child(bool condition, bool fatal, const QByteArray& input)
{
    QProcess child;
    child.setProcessChannelMode(QProcess::SeparateChannels);
    child.start(
        QCoreApplication::applicationFilePath(),
        {"tst_assertions", "--assert", condition ? "true" : "false", fatal ? "fatal" : "mild"});
    child.write(input);
    child.closeWriteChannel();
    child.waitForFinished(-1);
    Outcome outcome;
    if (child.exitStatus() == QProcess::NormalExit)
        outcome.exit_code = child.exitCode();
    outcome.output = child.readAllStandardOutput();
    return outcome;
}
}  // namespace

class AssertionsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_true_condition_is_silent_data();
    void a_true_condition_is_silent();
    void a_mild_failure_prints_its_text_and_goes_on();
    void a_fatal_failure_ends_the_process_after_a_line_data();
    void a_fatal_failure_ends_the_process_after_a_line();
    void a_fatal_failure_reads_one_line_behind_white_space();
};

void AssertionsTest::a_true_condition_is_silent_data()
{
    QTest::addColumn<bool>("fatal");

    QTest::newRow("mild") << false;
    QTest::newRow("fatal") << true;
}

void AssertionsTest::a_true_condition_is_silent()
{
    QFETCH(bool, fatal);
    const Outcome outcome = run_child(true, fatal, "");
    QCOMPARE(outcome.output, QByteArray("still running\n"));
    QCOMPARE(outcome.exit_code, 0);
}

void AssertionsTest::a_mild_failure_prints_its_text_and_goes_on()
{
    const Outcome outcome = run_child(false, false, "");
    QCOMPARE(outcome.output, QByteArray("axis must be top or bottom\nstill running\n"));
    QCOMPARE(outcome.exit_code, 0);
}

void AssertionsTest::a_fatal_failure_ends_the_process_after_a_line_data()
{
    QTest::addColumn<QByteArray>("input");

    QTest::newRow("a line") << QByteArray("x\n");
    QTest::newRow("white space first") << QByteArray(" \n\t\n  x\n");
    QTest::newRow("end of input") << QByteArray("");
    QTest::newRow("only white space") << QByteArray("\n\n");
}

void AssertionsTest::a_fatal_failure_ends_the_process_after_a_line()
{
    QFETCH(QByteArray, input);
    const Outcome outcome = run_child(false, true, input);
    QCOMPARE(outcome.output,
             QByteArray("axis must be top or bottom\nthe application will now terminate\n"));
    QCOMPARE(outcome.exit_code, 1);
}

void AssertionsTest::a_fatal_failure_reads_one_line_behind_white_space()
{
    QTemporaryFile input;
    QVERIFY(input.open());
    input.write(" \n\t\n  first line\nsecond line\n");
    input.close();
    QProcess shell;
    shell.setStandardInputFile(input.fileName());
    // cat gets the standard input where the child has left it.
    shell.start("/bin/sh", {"-c", "\"$0\" tst_assertions --assert false fatal >&2; cat",
                            QCoreApplication::applicationFilePath()});
    QVERIFY(shell.waitForFinished(-1));
    QCOMPARE(shell.readAllStandardOutput(), QByteArray("second line\n"));
}

static int tests_or_assertion(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--assert") == 0)
        return run_assertion(std::strcmp(argv[2], "true") == 0, std::strcmp(argv[3], "fatal") == 0);
    return run_tests<QCoreApplication, AssertionsTest>(argc, argv);
}

KEST_TEST_MAIN(tests_or_assertion)

#include "tst_assertions.moc"
