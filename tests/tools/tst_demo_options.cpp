#include "demo/demo_options.h"
#include "support/test_program.h"

#include <QTemporaryDir>
#include <QtTest>

/** The command line of the demo. */
class DemoOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void without_arguments_the_window_runs_sixty_times_as_fast();
    void speed_and_folder_are_taken_over();
    void the_folder_of_an_unattended_run_is_made();
    void help_tells_the_time_lapse();
    void bad_arguments_are_refused_data();
    void bad_arguments_are_refused();
};

void DemoOptionsTest::without_arguments_the_window_runs_sixty_times_as_fast()
{
    DemoOptions options;
    QString message;
    QCOMPARE(read_demo_options({"kest-demo"}, options, message), DemoStart::Run);
    QCOMPARE(options.speed, 60.0);
    QVERIFY(options.unattended_folder.isEmpty());
}

void DemoOptionsTest::speed_and_folder_are_taken_over()
{
    const QTemporaryDir folder;
    DemoOptions options;
    QString message;
    const QStringList arguments = {"kest-demo", "--speed", "7.5", "--unattended", folder.path()};
    QCOMPARE(read_demo_options(arguments, options, message), DemoStart::Run);
    QCOMPARE(options.speed, 7.5);
    QCOMPARE(options.unattended_folder, folder.path());
}

void DemoOptionsTest::the_folder_of_an_unattended_run_is_made()
{
    const QTemporaryDir folder;
    const QString missing = folder.filePath("a/b");
    DemoOptions options;
    QString message;
    QCOMPARE(read_demo_options({"kest-demo", "--unattended", missing}, options, message),
             DemoStart::Run);
    QVERIFY(QDir(missing).exists());
}

void DemoOptionsTest::help_tells_the_time_lapse()
{
    DemoOptions options;
    QString message;
    QCOMPARE(read_demo_options({"kest-demo", "--help"}, options, message), DemoStart::Help);
    QVERIFY(message.contains("default 60"));
    QVERIFY(message.contains("--unattended <DIR>"));
}

void DemoOptionsTest::bad_arguments_are_refused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("words");
    const QString range = "--speed takes a number from 1 to 1000, not '%1'.";
    QTest::newRow("speed in letters") << QStringList{"--speed", "fast"} << range.arg("fast");
    QTest::newRow("speed with a comma") << QStringList{"--speed", "1,5"} << range.arg("1,5");
    QTest::newRow("speed of nothing") << QStringList{"--speed", "0"} << range.arg("0");
    QTest::newRow("speed backwards") << QStringList{"--speed=-2"} << range.arg("-2");
    QTest::newRow("speed too high") << QStringList{"--speed", "1001"} << range.arg("1001");
    QTest::newRow("speed not a number") << QStringList{"--speed", "nan"} << range.arg("nan");
    QTest::newRow("a stray word") << QStringList{"now"} << "Unexpected argument: now";
    QTest::newRow("an unknown option") << QStringList{"--slow"} << "Unknown option 'slow'.";
    QTest::newRow("a folder below a file")
        << QStringList{"--unattended", "/dev/null/x"} << "The folder '/dev/null/x' cannot be made.";
}

void DemoOptionsTest::bad_arguments_are_refused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, words);
    DemoOptions options;
    QString message;
    QCOMPARE(read_demo_options(QStringList{"kest-demo"} + arguments, options, message),
             DemoStart::Refuse);
    QCOMPARE(message, words);
    QCOMPARE(options.speed, 60.0);
}

KEST_GUILESS_TEST(DemoOptionsTest)
#include "tst_demo_options.moc"
