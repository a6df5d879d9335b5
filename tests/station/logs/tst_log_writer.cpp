#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "config/settings.h"
#include "device/kestrometer.h"

#include <QDir>
#include <QFile>
#include <QtTest>

/** Each record in its file when the call returns, the raw traffic, and copies for the report. */
class LogWriterTest : public QObject
{
    Q_OBJECT

private slots:
    void each_record_is_in_the_file_when_its_call_returns();
    void sections_show_the_parameters_of_their_moment();
    void sections_have_their_number_and_start();
    void an_event_without_a_log_is_lost();
    void an_event_is_stamped_with_the_present();
    void letters_of_all_kinds_reach_the_event_log();
    void a_full_disk_is_not_noticed();
    void raw_traffic_is_logged_on_request();
    void raw_traffic_can_be_switched_during_a_test();
    void raw_traffic_needs_an_instrument();
    void a_log_is_copied_for_the_report_data();
    void a_log_is_copied_for_the_report();
    void a_copy_that_fails_is_told_data();
    void a_copy_that_fails_is_told();
};

namespace
{
const QByteArray HEADER = "Kestrometer Log\nBattery Name:  Pack A\nSerial Number: 1042\n";
const QByteArray CHARGE = "Charge Number:               %1\n"
                          "Timestamp:                   2020-04-03 09:15:00\n"
                          "Max Charge Time (h):         6\n"
                          "Detect Full Charge:          No\n"
                          "Low Voltage Cutoff (V):      19\n"
                          "Prompt to Discharge:         No\n"
                          "Final Charge (V):            0\n"
                          "Measure Internal Resistance: Yes\n"
                          "Software Version:            v1.0.0b1, Apr 03 2020\n"
                          "IR Test Interval (Ah):       0.5\n"
                          "Time (s),Voltage (V)\n";
const QByteArray DISCHARGE = "Discharge Number:            %1\n"
                             "Timestamp:                   2020-04-03 10:02:44\n"
                             "Max Charge Time (h):         6\n"
                             "Detect Full Charge:          No\n"
                             "Low Voltage Cutoff (V):      19\n"
                             "Prompt to Discharge:         No\n"
                             "Final Charge (V):            0\n"
                             "Measure Internal Resistance: Yes\n"
                             "IR Test Interval (Ah):       0.5\n"
                             "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n";

QByteArray numbered(QByteArray header, int number)
{
    return header.replace("%1", QByteArray::number(number));
}

/** A station with both logs open and nothing in them but the file header. */
struct OpenLog : StationBench
{
    OpenLog()
    {
        type_names("Pack A", "1042");
        if (!station->begin_log())
            qFatal("The log of the test cannot be begun.");
        station->leg_start_time = clock.now;
    }

    void add_cycle()
    {
        auto* cycle = new TestCycle;
        cycle->start_time = QDateTime(QDate(2020, 4, 3), QTime(10, 2, 44));
        station->cycles.append(cycle);
        station->current_cycle = cycle;
    }
};
}  // namespace

void LogWriterTest::each_record_is_in_the_file_when_its_call_returns()
{
    OpenLog bench;
    QByteArray data = HEADER;
    QCOMPARE(bench.csv(), data);
    bench.station->write_data_log_header();
    QCOMPARE(bench.csv(), data += HEADER);
    bench.station->write_charge_cycle_header();
    QCOMPARE(bench.csv(), data += numbered(CHARGE, 1));
    bench.station->append_data_log(0.9, 41.52);
    QCOMPARE(bench.csv(), data += "0.9,41.52\n");
    bench.add_cycle();
    bench.station->write_discharge_cycle_header();
    QCOMPARE(bench.csv(), data += numbered(DISCHARGE, 1));
    bench.station->append_data_log(1.0, 0.003, 40.97, 9.98, 0.0);
    QCOMPARE(bench.csv(), data += "1.0,0.003,40.97,9.98\n");
    bench.station->append_data_log(181.2, 0.502, 40.11, 9.97, 0.014);
    QCOMPARE(bench.csv(), data += "181.2,0.502,40.11,9.97,0.014\n");
    bench.station->append_text_log("an event");
    QCOMPARE(bench.txt(), QByteArray("2020-04-03 09:15:00 an event\n"));
    QCOMPARE(bench.csv(), data);
}

void LogWriterTest::sections_show_the_parameters_of_their_moment()
{
    OpenLog bench;
    bench.station->write_charge_cycle_header();
    bench.station->max_charge_time = 5400;
    bench.station->detect_full_charge = true;
    bench.station->low_voltage_cutoff = 30.25;
    bench.station->prompt_to_discharge = true;
    bench.station->final_voltage = 37.5;
    bench.station->measure_internal_resistance = false;
    bench.add_cycle();
    bench.station->write_discharge_cycle_header();
    QCOMPARE(bench.csv(), HEADER + numbered(CHARGE, 1) +
                              "Discharge Number:            1\n"
                              "Timestamp:                   2020-04-03 10:02:44\n"
                              "Max Charge Time (h):         1\n"
                              "Detect Full Charge:          Yes\n"
                              "Low Voltage Cutoff (V):      30.25\n"
                              "Prompt to Discharge:         Yes\n"
                              "Final Charge (V):            37.5\n"
                              "Measure Internal Resistance: No\n"
                              "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n");
}

void LogWriterTest::sections_have_their_number_and_start()
{
    // Discharge N follows charge N; the final charge of N cycles is number N+1.
    OpenLog bench;
    QByteArray data = HEADER;
    for (int number = 1; number <= 3; ++number) {
        bench.station->write_charge_cycle_header();
        QCOMPARE(bench.csv(), data += numbered(CHARGE, number));
        bench.add_cycle();
        bench.station->write_discharge_cycle_header();
        QCOMPARE(bench.csv(), data += numbered(DISCHARGE, number));
    }
    bench.station->write_charge_cycle_header();
    QCOMPARE(bench.csv(), data += numbered(CHARGE, 4));
}

void LogWriterTest::an_event_without_a_log_is_lost()
{
    StationBench bench;
    bench.station->append_text_log("lost");
    bench.type_names("Pack A", "1042");
    QVERIFY(bench.station->begin_log());
    bench.station->append_text_log("kept");
    QCOMPARE(bench.txt(), QByteArray("2020-04-03 09:15:00 kept\n"));
}

void LogWriterTest::an_event_is_stamped_with_the_present()
{
    OpenLog bench;
    bench.clock.advance_seconds(86399.999);
    bench.station->append_text_log("100 % of %1");
    QCOMPARE(bench.txt(), QByteArray("2020-04-04 09:14:59 100 % of %1\n"));
}

void LogWriterTest::letters_of_all_kinds_reach_the_event_log()
{
    OpenLog bench;
    bench.station->append_text_log(QString::fromUtf8("Bär 电池 🔋 Ω"));
    QCOMPARE(bench.txt(), QByteArray("2020-04-03 09:15:00 Bär 电池 🔋 Ω\n"));
}

void LogWriterTest::a_full_disk_is_not_noticed()
{
    StationBench bench;
    bench.station->data_log = new QFile("/dev/full");
    bench.station->text_log = new QFile("/dev/full");
    QVERIFY(bench.station->ui_safe_open_log());
    bench.station->write_data_log_header();
    bench.station->append_data_log(0.9, 41.52);
    bench.station->append_text_log("an event");
    bench.station->set_phase(PHASE_CHARGING, "of the test");
    bench.receive("41.52", "1.0", "C");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QVERIFY(bench.answers.seen.empty());
}

void LogWriterTest::raw_traffic_is_logged_on_request()
{
    StationBench bench;
    Settings::set_log_all_telemetry(true);
    bench.start();
    QCOMPARE(bench.instrument->telemetry_log, bench.station->text_log);
    bench.receive(" 41.52", "1.0", "C");
    QVERIFY(bench.wire.send("babble of %1", *bench.instrument));
    QCOMPARE(bench.txt(),
             QByteArray("2020-04-03 09:15:00 Switching to phase Charging because User clicked "
                        "'Start'.\n"
                        "2020-04-03 09:15:00 43\n"
                        "2020-04-03 09:15:01 x\t 41.52\t1.0\tx\tx\tID=7\tC\n"
                        "2020-04-03 09:15:01 babble of %1\n"));
}

void LogWriterTest::raw_traffic_can_be_switched_during_a_test()
{
    OpenLog bench;
    QVERIFY(bench.instrument->telemetry_log == nullptr);
    bench.receive("41.52", "1.0", "C");
    QCOMPARE(bench.txt(), QByteArray());
    bench.station->set_log_all_telemetry(true);
    bench.receive("41.53", "1.0", "C");
    bench.station->set_log_all_telemetry(false);
    QVERIFY(bench.instrument->telemetry_log == nullptr);
    bench.receive("41.54", "1.0", "C");
    QCOMPARE(bench.txt(), QByteArray("2020-04-03 09:15:02 x\t41.53\t1.0\tx\tx\tID=7\tC\n"));
}

void LogWriterTest::raw_traffic_needs_an_instrument()
{
    StationBench bench;
    // Without an open log there is nowhere to write.
    bench.station->set_log_all_telemetry(true);
    QVERIFY(bench.instrument->telemetry_log == nullptr);
    TestStation preview(nullptr, nullptr);
    preview.set_log_all_telemetry(true);
    preview.data_log = new QFile(bench.path("shown.csv"));
    preview.text_log = new QFile(bench.path("shown.txt"));
    Settings::set_log_all_telemetry(true);
    QVERIFY(preview.ui_safe_open_log());
    QVERIFY(QFile::exists(bench.path("shown.txt")));
}

void LogWriterTest::a_log_is_copied_for_the_report_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<bool>("present");
    QTest::newRow("new directory") << "reports/2020" << false;
    QTest::newRow("earlier copy") << "reports" << true;
}

void LogWriterTest::a_log_is_copied_for_the_report()
{
    QFETCH(QString, directory);
    QFETCH(bool, present);
    OpenLog bench;
    Settings::set_pdf_dir(bench.path(directory));
    const QString copy = bench.path(directory + "/Pack A_1042.csv");
    if (present) {
        QVERIFY(QDir().mkdir(bench.path(directory)));
        QVERIFY(write_file(copy, "an earlier copy, longer than the log" + QByteArray(999, '#')));
    }
    bench.station->append_data_log(0.9, 41.52);
    bench.station->archive_file(bench.station->data_log);
    QCOMPARE(content_of(copy), HEADER + "0.9,41.52\n");
    // The log stays open and goes on.
    bench.station->append_data_log(1.9, 41.53);
    QCOMPARE(bench.csv(), HEADER + "0.9,41.52\n1.9,41.53\n");
    QVERIFY(bench.answers.seen.empty());
}

void LogWriterTest::a_copy_that_fails_is_told_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<bool>("present");
    QTest::newRow("same directory") << "." << true;
    QTest::newRow("below a file") << "Pack A_1042.csv" << true;
    QTest::newRow("the copy's name is a directory") << "taken" << true;
    QTest::newRow("log has vanished") << "reports" << false;
}

void LogWriterTest::a_copy_that_fails_is_told()
{
    QFETCH(QString, directory);
    QFETCH(bool, present);
    OpenLog bench;
    QVERIFY(QDir().mkpath(bench.path("taken/Pack A_1042.csv")));
    const QString pdf_dir = QDir::cleanPath(bench.path(directory));
    Settings::set_pdf_dir(pdf_dir);
    const QString source = bench.path("Pack A_1042.csv");
    if (!present)
        QVERIFY(QFile::remove(source));
    bench.station->archive_file(bench.station->data_log);
    QCOMPARE(bench.answers.seen.size(), size_t(1));
    QCOMPARE(bench.answers.seen.front().caption, QString("Error"));
    QCOMPARE(bench.answers.seen.front().text,
             "Could not copy file to PDF directory.\nSource: " + source + "\nTarget: " + pdf_dir +
                 "/Pack A_1042.csv");
    if (present)
        QCOMPARE(content_of(source), HEADER);
}

KEST_TEST(LogWriterTest)
#include "tst_log_writer.moc"
