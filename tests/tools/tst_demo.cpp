#include "demo/demo.h"

#include "common/date_time.h"
#include "device/serial_ports.h"
#include "station/test_station.h"
#include "support/console_capture.h"
#include "support/help_document.h"
#include "support/settings_home.h"
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
    void an_unattended_run_ends_with_an_error_if_its_station_is_closed_data();
    void an_unattended_run_ends_with_an_error_if_its_station_is_closed();
};

void DemoTest::cleanup()
{
    Time::set_clock({});
    SerialPorts::set_source({});
    forget_help_document();
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
