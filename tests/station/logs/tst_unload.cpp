#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include "config/settings.h"
#include "device/kestrometer.h"

#include <QFile>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

/** The end of a test's data: what goes, what stays, and in which order. */
class UnloadTest : public QObject
{
    Q_OBJECT

private slots:
    void everything_of_the_test_goes();
    void parameters_stay();
    void nothing_is_logged_about_it();
    void listeners_hear_of_it_when_all_is_done();
    void the_instrument_is_told_while_no_log_is_left();
    void a_preview_can_type_its_number_afterwards();
    void nothing_loaded_is_no_obstacle();
    void a_station_that_dies_closes_its_logs();
};

namespace
{
const char* const IDENTITY[] = {"cbProfile", "pbDirectory", "leProfileName", "leSerialNumber"};

/** In the second discharge of a test, with all traffic logged. */
struct RunningTest : StationBench
{
    RunningTest()
    {
        Settings::set_log_all_telemetry(true);
        station->number_of_cycles = 2;
        start();
        for (int cycle = 0; cycle < 2; ++cycle) {
            receive("41.52", "1.0", "C");
            press("pbStartSkip");
            receive("40.00", "10.0", "D");
            if (cycle == 0)
                press("pbStartSkip");
        }
        wire.commands();
    }
};
}  // namespace

void UnloadTest::everything_of_the_test_goes()
{
    RunningTest bench;
    QCOMPARE(bench.station->cycles.size(), 2);
    const QPointer<QFile> data_log = bench.station->data_log;
    const QPointer<QFile> text_log = bench.station->text_log;
    bench.station->unload_test_data();
    QVERIFY(bench.instrument->telemetry_log == nullptr);
    QVERIFY(bench.station->cycles.isEmpty());
    QVERIFY(bench.station->current_cycle == nullptr);
    QVERIFY(bench.station->data_log == nullptr);
    QVERIFY(bench.station->text_log == nullptr);
    QVERIFY(data_log.isNull());
    QVERIFY(text_log.isNull());
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    QCOMPARE(bench.station->serial_number, QString());
    QVERIFY(!bench.station->serial_number_edited);
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString());
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QCOMPARE(bench.widget<QPushButton>("pbStartSkip")->text(), QString("Start"));
    for (const char* name : IDENTITY)
        QVERIFY2(bench.widget<QWidget>(name)->isEnabled(), name);
}

void UnloadTest::parameters_stay()
{
    RunningTest bench;
    bench.type("leMaxChargeTime", "2.5");
    bench.type("leLowVoltageCutoff", "30.5");
    bench.station->unload_test_data();
    QCOMPARE(bench.station->profile_name, QString("Pack A"));
    QCOMPARE(bench.station->max_charge_time, 9000);
    QCOMPARE(bench.station->low_voltage_cutoff, 30.5);
    QCOMPARE(bench.station->number_of_cycles, 2);
    QCOMPARE(bench.station->log_dir, bench.folder.path());
    // The controls have been written anew.
    QCOMPARE(bench.widget<QLineEdit>("leMaxChargeTime")->text(), QString("2"));
    QCOMPARE(bench.widget<QLineEdit>("leProfileName")->text(), QString("Pack A"));
}

void UnloadTest::nothing_is_logged_about_it()
{
    RunningTest bench;
    const QByteArray data = bench.csv();
    const QByteArray events = bench.txt();
    bench.station->unload_test_data();
    bench.receive("41.52", "0.0", "O");
    QCOMPARE(bench.csv(), data);
    QCOMPARE(bench.txt(), events);
}

void UnloadTest::listeners_hear_of_it_when_all_is_done()
{
    RunningTest bench;
    int heard = 0;
    connect(bench.station.get(), &TestStation::sig_max_cycle_change, this, [&bench, &heard] {
        ++heard;
        QVERIFY(bench.station->cycles.isEmpty());
        QVERIFY(bench.station->data_log == nullptr);
        QCOMPARE(bench.station->phase, PHASE_IDLE);
        QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString());
        for (const char* name : IDENTITY)
            QVERIFY2(bench.widget<QWidget>(name)->isEnabled(), name);
    });
    bench.station->unload_test_data();
    QCOMPARE(heard, 1);
}

void UnloadTest::the_instrument_is_told_while_no_log_is_left()
{
    // The command comes after the logs have gone, so that it is in none of them.
    RunningTest bench;
    bench.station->unload_test_data();
    QVERIFY(!bench.txt().endsWith(" 4F\n"));
    QVERIFY(!bench.txt().contains("Unloading test data."));
}

void UnloadTest::a_preview_can_type_its_number_afterwards()
{
    StationBench bench;
    TestStation preview(nullptr, nullptr);
    QVERIFY(!preview.findChild<QLineEdit*>("leSerialNumber")->isEnabled());
    preview.unload_test_data();
    QVERIFY(preview.findChild<QLineEdit*>("leSerialNumber")->isEnabled());
}

void UnloadTest::nothing_loaded_is_no_obstacle()
{
    StationBench bench;
    bench.type_names("Pack A", "1042");
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    bench.station->unload_test_data();
    QCOMPARE(bench.station->serial_number, QString());
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    // Nobody can start a test without a number, and the panel says why.
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QVERIFY(!bench.widget<QWidget>("laBlankSerialNumber")->isHidden());
}

void UnloadTest::a_station_that_dies_closes_its_logs()
{
    RunningTest bench;
    const QPointer<QFile> data_log = bench.station->data_log;
    const QPointer<QFile> text_log = bench.station->text_log;
    bench.station.reset();
    QVERIFY(data_log.isNull());
    QVERIFY(text_log.isNull());
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    QVERIFY(bench.file("Pack A_1042.txt").endsWith(" 4F\n"));
}

KEST_TEST(UnloadTest)
#include "tst_unload.moc"
