#include "station/test_station.h"
#include "support/ordinary_user.h"
#include "support/log_loading.h"
#include "support/station_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include "config/settings.h"
#include "device/kestrometer.h"

#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QRadioButton>
#include <QtTest>

/** Where a new test writes, beside what earlier tests have left there. */
class BeginLogTest : public QObject
{
    Q_OBJECT

private slots:
    void names_make_the_paths();
    void opening_locks_what_identifies_the_test();
    void an_event_log_alone_is_continued();
    void overwriting_begins_anew_data();
    void overwriting_begins_anew();
    void a_log_that_cannot_be_removed_is_written_over();
    void a_suffix_takes_the_first_free_pair_data();
    void a_suffix_takes_the_first_free_pair();
    void a_place_marker_in_a_name_takes_the_number();
    void a_place_marker_in_the_directory_takes_the_number();
    void without_a_choice_nothing_is_touched_data();
    void without_a_choice_nothing_is_touched();
    void files_that_cannot_be_opened_are_told_data();
    void files_that_cannot_be_opened_are_told();
    void a_read_only_directory_is_told();
    void names_of_all_letters_reach_the_disk();
    void logs_already_open_are_told_and_replaced();
    void a_line_under_the_failure_meets_no_closed_log();
    void lines_go_on_under_the_question();
};

namespace
{
const QByteArray HEADER = "Kestrometer Log\nBattery Name:  Pack A\nSerial Number: 1042\n";
const QByteArray FIRST_EVENT =
    "2020-04-03 09:15:00 Switching to phase Charging because User clicked 'Start'.\n";

}  // namespace

void BeginLogTest::names_make_the_paths()
{
    StationBench bench;
    bench.start("Pack A", "1042");
    QCOMPARE(bench.station->data_log->fileName(), bench.path("Pack A_1042.csv"));
    QCOMPARE(bench.station->text_log->fileName(), bench.path("Pack A_1042.txt"));
    QCOMPARE(bench.station->data_log->openMode(), QIODevice::ReadWrite | QIODevice::Text);
    QVERIFY((bench.station->text_log->openMode() & QIODevice::Append) != 0);
    QVERIFY(bench.csv().startsWith(HEADER + "Charge Number:               1\n"));
    QCOMPARE(bench.txt(), FIRST_EVENT);
    QCOMPARE(bench.boxes(), QStringList());
}

void BeginLogTest::opening_locks_what_identifies_the_test()
{
    StationBench bench;
    bench.start();
    for (const char* name : {"cbProfile", "pbDirectory", "leProfileName", "leSerialNumber"})
        QVERIFY2(!bench.widget<QWidget>(name)->isEnabled(), name);
    for (const char* name : {"sbNumberOfCycles", "leMaxChargeTime", "leLowVoltageCutoff",
                             "leFinalCharge", "cbPromptToDischarge", "cbMeasureInternalResistance"})
        QVERIFY2(bench.widget<QWidget>(name)->isEnabled(), name);
}

void BeginLogTest::an_event_log_alone_is_continued()
{
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.txt"), "an earlier event\n"));
    bench.start();
    QCOMPARE(bench.txt(), "an earlier event\n" + FIRST_EVENT);
    QVERIFY(bench.csv().startsWith(HEADER));
    QCOMPARE(bench.boxes(), QStringList());
}

void BeginLogTest::overwriting_begins_anew_data()
{
    QTest::addColumn<bool>("with_events");
    QTest::newRow("both logs") << true;
    QTest::newRow("no event log") << false;
}

void BeginLogTest::overwriting_begins_anew()
{
    QFETCH(bool, with_events);
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.csv"), QByteArray(10000, '#')));
    if (with_events)
        QVERIFY(write_file(bench.path("Pack A_1042.txt"), "an earlier event\n"));
    choose(bench, "rbOverwrite");
    bench.start();
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QVERIFY(bench.csv().startsWith(HEADER));
    QVERIFY(!bench.csv().contains('#'));
    QCOMPARE(bench.txt(), FIRST_EVENT);
    QCOMPARE(bench.boxes(), QStringList());
}

void BeginLogTest::a_log_that_cannot_be_removed_is_written_over()
{
    StationBench bench;
    QVERIFY(QFile::setPermissions(bench.folder.path(), QFile::Permissions(0x7777)));
    const OrdinaryUser user;
    QVERIFY(user.active());
    const QString directory = bench.path("kept");
    QVERIFY(QDir().mkdir(directory));
    QVERIFY(write_file(directory + "/Pack A_1042.csv", QByteArray(10000, '#')));
    QVERIFY(write_file(directory + "/Pack A_1042.txt", "an earlier event\n"));
    QVERIFY(QFile::setPermissions(directory, QFile::ReadOwner | QFile::ExeOwner));
    bench.station->log_dir = directory;
    choose(bench, "rbOverwrite");
    bench.start();
    const QByteArray log = bench.csv();
    QCOMPARE(log.size(), 10000);
    QVERIFY(log.startsWith(HEADER));
    QVERIFY(log.contains("Time (s),Voltage (V)\n###"));
    QCOMPARE(bench.txt(), "an earlier event\n" + FIRST_EVENT);
    QCOMPARE(bench.boxes(), QStringList());
    QVERIFY(QFile::setPermissions(directory, QFile::Permissions(0x7000)));
}

void BeginLogTest::a_suffix_takes_the_first_free_pair_data()
{
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<int>("suffix");
    QTest::newRow("first") << QStringList{"Pack A_1042.csv", "Pack A_1042.txt"} << 2;
    QTest::newRow("data log taken") << QStringList{"Pack A_1042.csv", "Pack A_1042 (2).csv"} << 3;
    QTest::newRow("event log taken") << QStringList{"Pack A_1042.csv", "Pack A_1042 (2).txt"} << 3;
    QTest::newRow("a gap") << QStringList{"Pack A_1042.csv", "Pack A_1042 (3).csv"} << 2;
    add_row("halves",
            QStringList{"Pack A_1042.csv", "Pack A_1042 (2).csv", "Pack A_1042 (3).txt",
                        "Pack A_1042 (4).csv"},
            5);
}

void BeginLogTest::a_suffix_takes_the_first_free_pair()
{
    QFETCH(QStringList, present);
    QFETCH(int, suffix);
    StationBench bench;
    for (const QString& name : present)
        QVERIFY(write_file(bench.path(name), "earlier"));
    choose(bench, "rbSuffix");
    bench.start();
    const QString base = bench.path(QString("Pack A_1042 (%1)").arg(suffix));
    QCOMPARE(bench.station->data_log->fileName(), base + ".csv");
    QCOMPARE(bench.station->text_log->fileName(), base + ".txt");
    QVERIFY(bench.csv().startsWith(HEADER));
    QCOMPARE(bench.txt(), FIRST_EVENT);
    for (const QString& name : present)
        QCOMPARE(bench.file(name), QByteArray("earlier"));
}

void BeginLogTest::a_place_marker_in_a_name_takes_the_number()
{
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack %1_1042.csv"), "earlier"));
    QVERIFY(write_file(bench.path("Pack 2_1042 (%2).csv"), "earlier"));
    choose(bench, "rbSuffix");
    bench.start("Pack %1", "1042");
    QCOMPARE(bench.station->data_log->fileName(), bench.path("Pack 3_1042 (%2).csv"));
    QVERIFY(bench.csv().startsWith("Kestrometer Log\nBattery Name:  Pack %1\n"));
}

void BeginLogTest::a_place_marker_in_the_directory_takes_the_number()
{
    StationBench bench;
    for (const char* name : {"dir %1", "dir 2"})
        QVERIFY(QDir().mkdir(bench.path(name)));
    QVERIFY(write_file(bench.path("dir %1/Pack A_1042.csv"), "earlier"));
    bench.station->log_dir = bench.path("dir %1");
    choose(bench, "rbSuffix");
    bench.start();
    QCOMPARE(bench.station->data_log->fileName(), bench.path("dir 2/Pack A_1042 (%2).csv"));
}

void BeginLogTest::without_a_choice_nothing_is_touched_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("Cancel") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("window frame") << 2;
}

void BeginLogTest::without_a_choice_nothing_is_touched()
{
    QFETCH(int, way);
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.csv"), "earlier data"));
    QVERIFY(write_file(bench.path("Pack A_1042.txt"), "earlier events"));
    bench.answers.handle([way](QWidget* dialog) {
        if (way == 0)
            QTest::mouseClick(dialog->findChild<QWidget*>("pbCancel"), Qt::LeftButton);
        else if (way == 1)
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            dialog->close();
    });
    bench.start();
    QCOMPARE(bench.boxes(), QStringList("Error: Unable to create log file."));
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QVERIFY(bench.station->data_log == nullptr);
    QVERIFY(bench.station->text_log == nullptr);
    QCOMPARE(bench.station->serial_number, QString("1042"));
    QVERIFY(bench.widget<QLineEdit>("leSerialNumber")->isEnabled());
    QCOMPARE(bench.files(), QStringList({"Pack A_1042.csv", "Pack A_1042.txt"}));
    QCOMPARE(bench.file("Pack A_1042.csv"), QByteArray("earlier data"));
    QCOMPARE(bench.file("Pack A_1042.txt"), QByteArray("earlier events"));
}

void BeginLogTest::files_that_cannot_be_opened_are_told_data()
{
    QTest::addColumn<QString>("directory");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("left");
    const QStringList nothing;
    add_row("below a file", "file", "Pack A", nothing);
    add_row("vanished", "no such directory", "Pack A", nothing);
    QTest::newRow("name too long") << "." << QString(260, 'n') << nothing;
    // The data log has been opened by then.
    add_row("event log is a directory", ".", "Taken", QStringList("Taken_1042.csv"));
}

void BeginLogTest::files_that_cannot_be_opened_are_told()
{
    QFETCH(QString, directory);
    QFETCH(QString, name);
    StationBench bench;
    Settings::set_log_all_telemetry(true);
    QVERIFY(write_file(bench.path("file"), "a regular file"));
    QVERIFY(QDir().mkdir(bench.path("Taken_1042.txt")));
    bench.station->log_dir = bench.path(directory);
    bench.start(name, "1042");
    QCOMPARE(bench.boxes(), QStringList({"Error: Could not open log file with write permission.",
                                         "Error: Unable to create log file."}));
    QVERIFY(bench.station->data_log == nullptr);
    QVERIFY(bench.station->text_log == nullptr);
    QVERIFY(bench.instrument->telemetry_log == nullptr);
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.station->serial_number, QString());
    for (const char* control : {"cbProfile", "pbDirectory", "leProfileName", "leSerialNumber"})
        QVERIFY2(bench.widget<QWidget>(control)->isEnabled(), control);
    QTEST(bench.files(), "left");
    // The next try, in a place that exists, succeeds.
    bench.station->log_dir = bench.folder.path();
    bench.start("Pack B", "1");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
}

void BeginLogTest::a_read_only_directory_is_told()
{
    StationBench bench;
    QVERIFY(QFile::setPermissions(bench.folder.path(), QFile::Permissions(0x7777)));
    const OrdinaryUser user;
    QVERIFY(user.active());
    const QString directory = bench.path("read-only");
    QVERIFY(QDir().mkdir(directory));
    QVERIFY(QFile::setPermissions(directory, QFile::ReadOwner | QFile::ExeOwner));
    bench.station->log_dir = directory;
    bench.start();
    QCOMPARE(bench.boxes(), QStringList({"Error: Could not open log file with write permission.",
                                         "Error: Unable to create log file."}));
    QVERIFY(QDir(directory).isEmpty());
}

void BeginLogTest::names_of_all_letters_reach_the_disk()
{
    StationBench bench;
    // The Start button would refuse the second name; the log takes both.
    for (const char* letters : {"Bär é", "电池"}) {
        const QString name = QString::fromUtf8(letters);
        bench.station->profile_name = name;
        bench.station->serial_number = "1";
        QVERIFY(bench.station->begin_log());
        bench.station->append_text_log(name);
        QCOMPARE(bench.csv(),
                 "Kestrometer Log\nBattery Name:  " + QByteArray(letters) + "\nSerial Number: 1\n");
        QCOMPARE(bench.txt(), "2020-04-03 09:15:00 " + QByteArray(letters) + "\n");
        QVERIFY(QFile::exists(bench.path(name + "_1.csv")));
        bench.station->unload_test_data();
    }
}

void BeginLogTest::logs_already_open_are_told_and_replaced()
{
    StationBench bench;
    Settings::set_log_all_telemetry(true);
    bench.start("Pack A", "1");
    const QPointer<QFile> old_data_log = bench.station->data_log;
    const QPointer<QFile> old_text_log = bench.station->text_log;
    bench.station->serial_number = "2";
    QVERIFY(bench.station->begin_log());
    QCOMPARE(bench.boxes(),
             QStringList({"Failed Assumption: data log file already set in begin_log()",
                          "Failed Assumption: text log file already set in begin_log()"}));
    QVERIFY(old_data_log.isNull());
    QVERIFY(old_text_log.isNull());
    QCOMPARE(bench.station->data_log->fileName(), bench.path("Pack A_2.csv"));
    QCOMPARE(bench.instrument->telemetry_log, bench.station->text_log);
    QVERIFY(bench.csv().startsWith("Kestrometer Log\nBattery Name:  Pack A\nSerial Number: 2\n"));
}

void BeginLogTest::a_line_under_the_failure_meets_no_closed_log()
{
    StationBench bench;
    Settings::set_log_all_telemetry(true);
    bench.start("Pack A", "1");
    bench.station->log_dir = bench.path("no such directory");
    bench.answers.click(QMessageBox::Ok);
    bench.answers.click(QMessageBox::Ok);
    bench.answers.handle([&bench](QWidget* box) {
        bench.receive("41.52", "0.0", "O");
        static_cast<QDialog*>(box)->reject();
    });
    QVERIFY(!bench.station->begin_log());
    QCOMPARE(bench.boxes().last(),
             QString("Error: Could not open log file with write permission."));
    QCOMPARE(bench.instrument->voltage, 41.52);
}

void BeginLogTest::lines_go_on_under_the_question()
{
    StationBench bench;
    QVERIFY(write_file(bench.path("Pack A_1042.csv"), "earlier"));
    bench.answers.handle([&bench](QWidget* dialog) {
        bench.receive("41.52", "0.0", "O");
        bench.station->slot_blink(true);
        dialog->findChild<QRadioButton*>("rbSuffix")->click();
        static_cast<QDialog*>(dialog)->accept();
    });
    bench.start();
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(bench.instrument->voltage, 41.52);
    QVERIFY(bench.csv().endsWith("Time (s),Voltage (V)\n"));
}

KEST_TEST(BeginLogTest)
#include "tst_begin_log.moc"
