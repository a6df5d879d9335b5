#include "station/test_station.h"
#include "support/log_loading.h"
#include "support/station_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "device/kestrometer.h"

#include <QtTest>

/** A new test that goes on in an earlier log, or meets the log of a test that is running. */
class SharedLogTest : public QObject
{
    Q_OBJECT

private slots:
    void an_appended_log_goes_on();
    void a_log_cut_off_goes_on_in_a_line_of_its_own_data();
    void a_log_cut_off_goes_on_in_a_line_of_its_own();
    void a_log_that_cannot_be_read_is_left_as_it_is_data();
    void a_log_that_cannot_be_read_is_left_as_it_is();
    void two_stations_on_one_file_lose_no_record();
    void a_loaded_log_shared_loses_no_record();
    void two_stations_of_one_name_can_keep_apart();
    void two_stations_of_one_name_can_part_by_overwriting();
};

namespace
{
const QByteArray EARLIER = "Kestrometer Log\n"
                           "Battery Name:  Pack A\n"
                           "Serial Number: 1042\n"
                           "Charge Number:               1\n"
                           "Timestamp:                   2020-04-02 09:15:02\n"
                           "Max Charge Time (h):         8\n"
                           "Detect Full Charge:          No\n"
                           "Low Voltage Cutoff (V):      30\n"
                           "Prompt to Discharge:         No\n"
                           "Final Charge (V):            37.5\n"
                           "Measure Internal Resistance: No\n"
                           "Software Version:            v1.0.0b1, Apr 03 2020\n"
                           "Time (s),Voltage (V)\n"
                           "0.9,41.52\n"
                           "Discharge Number:            1\n"
                           "Timestamp:                   2020-04-02 10:02:44\n"
                           "Max Charge Time (h):         8\n"
                           "Detect Full Charge:          No\n"
                           "Low Voltage Cutoff (V):      30\n"
                           "Prompt to Discharge:         No\n"
                           "Final Charge (V):            37.5\n"
                           "Measure Internal Resistance: No\n"
                           "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n"
                           "1.0,0.003,40.97,9.98\n";

}  // namespace

void SharedLogTest::an_appended_log_goes_on()
{
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.csv"), EARLIER));
    QVERIFY(write_file(bench.path("Pack A_1042.txt"), "an earlier event\n"));
    choose(bench, "rbAppend");
    bench.start();
    bench.receive("41.52", "1.0", "C");
    QCOMPARE(bench.boxes(), QStringList());
    QCOMPARE(bench.csv(), EARLIER + "Charge Number:               2\n"
                                    "Timestamp:                   2020-04-03 09:15:00\n"
                                    "Max Charge Time (h):         8\n"
                                    "Detect Full Charge:          No\n"
                                    "Low Voltage Cutoff (V):      30\n"
                                    "Prompt to Discharge:         No\n"
                                    "Final Charge (V):            37.5\n"
                                    "Measure Internal Resistance: No\n"
                                    "Software Version:            v1.0.0b1, Apr 03 2020\n"
                                    "Time (s),Voltage (V)\n"
                                    "1.0,41.52\n");
    QCOMPARE(bench.txt(), QByteArray("an earlier event\n"
                                     "2020-04-03 09:15:00 Switching to phase Charging because "
                                     "User clicked 'Start'.\n"));
}

void SharedLogTest::a_log_cut_off_goes_on_in_a_line_of_its_own_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QByteArray>("line_end");
    const QByteArray carriage_returns = QByteArray(EARLIER).replace("\n", "\r\n");
    QTest::newRow("whole") << EARLIER << QByteArray();
    QTest::newRow("without its last line end") << EARLIER.chopped(1) << QByteArray("\n");
    QTest::newRow("within a number") << EARLIER.chopped(2) << QByteArray("\n");
    QTest::newRow("CR LF, whole") << carriage_returns << QByteArray();
    QTest::newRow("CR LF, between the two") << carriage_returns.chopped(1) << QByteArray("\n");
    QTest::newRow("CR LF, before the two") << carriage_returns.chopped(2) << QByteArray("\n");
}

void SharedLogTest::a_log_cut_off_goes_on_in_a_line_of_its_own()
{
    QFETCH(QByteArray, log);
    QFETCH(QByteArray, line_end);
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.csv"), log));
    choose(bench, "rbAppend");
    bench.start();
    QCOMPARE(bench.boxes(), QStringList());
    QCOMPARE(bench.csv().left(log.size()), log);
    QVERIFY(bench.csv().mid(log.size()).startsWith(line_end + "Charge Number:               2\n"));
}

void SharedLogTest::a_log_that_cannot_be_read_is_left_as_it_is_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("another kind of file") << QByteArray("a;b;c\n1;2;3\n");
    QTest::newRow("mark in lower case") << QByteArray("kestrometer log\n");
}

void SharedLogTest::a_log_that_cannot_be_read_is_left_as_it_is()
{
    QFETCH(QByteArray, content);
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.csv"), content));
    choose(bench, "rbAppend");
    bench.start();
    QCOMPARE(bench.boxes(),
             QStringList({"Error: Unable to read log file.", "Error: Unable to create log file."}));
    QCOMPARE(bench.file("Pack A_1042.csv"), content);
    QVERIFY(bench.station->data_log == nullptr);
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.station->serial_number, QString());
}

void SharedLogTest::two_stations_on_one_file_lose_no_record()
{
    StationBench first;
    first.start();
    StationBench second;
    second.station->log_dir = first.folder.path();
    choose(first, "rbAppend");  // whichever of the two sees the dialog first
    choose(second, "rbAppend");
    second.start();
    QByteArray log = first.file("Pack A_1042.csv");
    QCOMPARE(log.count("Charge Number: "), 2);
    for (int i = 0; i < 3; ++i) {
        first.station->append_data_log(i, 41.5);
        QCOMPARE(first.file("Pack A_1042.csv"), log += QByteArray::number(i) + ".0,41.50\n");
        second.station->append_data_log(i, 38.25);
        QCOMPARE(first.file("Pack A_1042.csv"), log += QByteArray::number(i) + ".0,38.25\n");
    }
}

void SharedLogTest::a_loaded_log_shared_loses_no_record()
{
    StationBench first;
    QVERIFY(write_file(first.path("Pack A_1042.csv"), EARLIER));
    first.answers.choose_path(first.path("Pack A_1042.csv"));
    first.press("pbLoadLog");
    QCOMPARE(first.station->cycles.size(), 1);
    StationBench second;
    second.station->log_dir = first.folder.path();
    choose(first, "rbAppend");
    choose(second, "rbAppend");
    second.start();
    second.station->append_data_log(2.0, 38.25);
    const QByteArray log = first.file("Pack A_1042.csv");
    QVERIFY(log.startsWith(EARLIER));
    first.station->append_data_log(1.0, 41.5);
    QCOMPARE(first.file("Pack A_1042.csv"), log + "1.0,41.50\n");
}

void SharedLogTest::two_stations_of_one_name_can_keep_apart()
{
    StationBench first;
    first.start();
    StationBench second;
    second.station->log_dir = first.folder.path();
    choose(first, "rbSuffix");  // whichever of the two sees the dialog first
    choose(second, "rbSuffix");
    second.start();
    first.station->append_data_log(1.0, 41.0);
    second.station->append_data_log(2.0, 42.0);
    QVERIFY(first.file("Pack A_1042.csv").endsWith("Voltage (V)\n1.0,41.00\n"));
    QVERIFY(first.file("Pack A_1042 (2).csv").endsWith("Voltage (V)\n2.0,42.00\n"));
}

void SharedLogTest::two_stations_of_one_name_can_part_by_overwriting()
{
    StationBench first;
    first.start();
    StationBench second;
    second.station->log_dir = first.folder.path();
    choose(first, "rbOverwrite");  // whichever of the two sees the dialog first
    choose(second, "rbOverwrite");
    second.start();
    first.station->append_data_log(1.0, 41.0);
    second.station->append_data_log(2.0, 42.0);
    QVERIFY(first.file("Pack A_1042.csv").endsWith("Voltage (V)\n2.0,42.00\n"));
    // The first still writes, into the file that has lost its name.
    first.station->data_log->seek(0);
    QVERIFY(first.station->data_log->readAll().endsWith("Voltage (V)\n1.0,41.00\n"));
}

KEST_TEST(SharedLogTest)
#include "tst_shared_log.moc"
