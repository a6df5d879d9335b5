#include "demo/demo.h"
#include "demo/demo_console.h"

#include "common/console.h"
#include "common/date_time.h"
#include "device/kestrometer.h"
#include "device/serial_ports.h"
#include "station/test_station.h"
#include "support/console_capture.h"
#include "support/help_document.h"
#include "support/settings_home.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
TestStation* station_of(const QString& profile)
{
    for (TestStation* station : qAsConst(TestStation::all_instances))
        if (station->findChild<QLineEdit*>("leProfileName")->text() == profile)
            return station;
    return nullptr;
}
struct Ending
{
    int status;
    QByteArray text;
};

/** The comparisons come after it: their own words go to standard output too. */
Ending run_to_its_end()
{
    ConsoleCapture console;
    const int status = QApplication::exec();
    return {status, console.text()};
}
}  // namespace

/** The demo with its own window and instruments, in a settings directory of its own. */
class DemoTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void an_earlier_test_is_shown_beside_the_running_one();
    void what_runs_and_where_it_leaves_its_files_is_told();
    void console_lines_go_into_a_file_but_not_the_demos_own();
    void an_unattended_run_ends_with_an_error_if_its_station_is_closed_data();
    void an_unattended_run_ends_with_an_error_if_its_station_is_closed();
};

void DemoTest::cleanup()
{
    Time::set_clock({});
    SerialPorts::set_source({});
    forget_help_document();
}

void DemoTest::an_earlier_test_is_shown_beside_the_running_one()
{
    const SettingsHome home;
    const QTemporaryDir folder;
    DemoOptions options;
    options.unattended_folder = folder.path();
    Demo demo(options);
    QString error;
    QVERIFY2(demo.start(error), qPrintable(error));
    const TestStation* preview = station_of("Earlier Pack");
    QVERIFY(preview != nullptr);
    QVERIFY(preview->kestrometer == nullptr);
    QCOMPARE(preview->serial_number, QString("0041"));
    QCOMPARE(preview->cycles.size(), 3);
    QCOMPARE(preview->data_log->fileName(), folder.filePath("Earlier Pack_0041.csv"));
    const QWidget* window = preview->window();
    QVERIFY2(window->windowTitle().endsWith(" - Demo, 60 times as fast"),
             qPrintable(window->windowTitle()));
    QVERIFY(window->width() >= 1600);
    QVERIFY(window->height() >= 1000);
}

void DemoTest::what_runs_and_where_it_leaves_its_files_is_told()
{
    const SettingsHome home;
    const QTemporaryDir folder;
    DemoOptions options;
    options.unattended_folder = folder.path();
    Demo demo(options);
    QStringList told;
    demo.tell = [&told](const QString& text) {
        told << text;
    };
    QString error;
    QVERIFY2(demo.start(error), qPrintable(error));
    const QStringList ports = {station_of("Demo Pack")->kestrometer->get_port_name(),
                               station_of("Spare Pack")->kestrometer->get_port_name()};
    const QString free_port = SerialPorts::names()[2];
    QVERIFY(!ports.contains(free_port));
    QCOMPARE(told.join('|'),
             QString("This is a demo: the Kest Battery Tester with simulated instruments, 60 times "
                     "as fast.\n"
                     "  A test of two cycles runs on %1; beside it an earlier test is shown.\n"
                     "  The station on %2 waits for its Start.\n"
                     "  An instrument on %3 waits for a station: Add a Test Station.\n"
                     "  Logs and pages: %4\n"
                     "  Settings:       %5\n")
                 .arg(ports[0], ports[1], free_port, folder.path(), home.directory));
}

void DemoTest::console_lines_go_into_a_file_but_not_the_demos_own()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath("console.txt");
    QByteArray terminal;
    {
        ConsoleCapture capture;
        {
            const DemoConsole console(file);
            print_to_console("stuck\n");
            console.tell("done\n");
        }
        print_to_console("after\n");
        terminal = capture.text();
    }
    QCOMPARE(terminal, QByteArray("done\nafter\n"));
    QCOMPARE(content_of(file), QByteArray("stuck\n"));
}

void DemoTest::an_unattended_run_ends_with_an_error_if_its_station_is_closed_data()
{
    QTest::addColumn<bool>("started");
    QTest::newRow("before its start") << false;
    QTest::newRow("in its test") << true;
}

void DemoTest::an_unattended_run_ends_with_an_error_if_its_station_is_closed()
{
    QFETCH(bool, started);
    const SettingsHome home;
    const QTemporaryDir folder;
    DemoOptions options;
    options.unattended_folder = folder.path();
    Demo demo(options);
    QString error;
    QVERIFY2(demo.start(error), qPrintable(error));
    TestStation* station = station_of("Demo Pack");
    if (started)
        QTRY_VERIFY(station->phase != PHASE_IDLE);
    delete station;
    const Ending ending = run_to_its_end();
    QVERIFY2(ending.text.endsWith("The station of the test was closed.\n"), ending.text);
    QCOMPARE(ending.status, 1);
}

KEST_TEST(DemoTest)
#include "tst_demo.moc"
