#include "station/test_station.h"
#include "support/log_loading.h"
#include "support/ordinary_user.h"
#include "support/read_log.h"
#include "support/test_files.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QTextStream>
#include <QtTest>

/** Every way in which loading a log can fail, and the start state behind each. */
class LoadFailuresTest : public QObject
{
    Q_OBJECT

private slots:
    void a_path_without_a_dot_cannot_be_loaded();
    void the_last_dot_of_the_whole_path_counts();
    void a_file_that_cannot_be_written_is_not_loaded_data();
    void a_file_that_cannot_be_written_is_not_loaded();
    void a_refused_log_leaves_the_start_state_data();
    void a_refused_log_leaves_the_start_state();
    void a_log_cut_anywhere_loads_or_leaves_the_start_state();
    void what_a_refused_log_had_told_stays();
    void a_refused_log_is_not_touched();
    void another_log_can_follow_a_refused_one();
    void a_folder_is_no_log();
};

namespace
{
const char* const UNREADABLE = "Unable to read log file.";
const char* const UNWRITABLE = "Could not open log file with write permission.";

QStringList error(const QString& text)
{
    return {"Error: " + text};
}
}  // namespace

void LoadFailuresTest::a_path_without_a_dot_cannot_be_loaded()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    const QString path = place_log(bench, "current_one_cycle.csv", "log %2");
    QVERIFY(!path.contains('.'));
    bench.answers.seen.clear();
    bench.answers.click(QMessageBox::Yes);
    bench.answers.choose_path(path);
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbLoadLog");
    QCOMPARE(bench.boxes().last(),
             "Error: Could not create new filename by changing extension of '" + path +
                 "' to '.txt'.");
    QVERIFY(in_start_state(*bench.station));
    QCOMPARE(content_of(path), sample_log("current_one_cycle.csv"));
}

void LoadFailuresTest::the_last_dot_of_the_whole_path_counts()
{
    StationBench bench;
    QDir(bench.folder.path()).mkdir("logs.2020");
    load_log(bench, place_log(bench, "current_one_cycle.csv", "logs.2020/log"));
    QCOMPARE(bench.boxes(), QStringList());
    QCOMPARE(bench.station->text_log->fileName(), bench.path("logs.txt"));

    load_log(bench, place_log(bench, "current_one_cycle.csv", "logs.2020/a.b.csv"));
    QCOMPARE(bench.station->text_log->fileName(), bench.path("logs.2020/a.b.txt"));
}

void LoadFailuresTest::a_file_that_cannot_be_written_is_not_loaded_data()
{
    QTest::addColumn<QString>("protected_name");
    QTest::addColumn<int>("mode");
    QTest::newRow("a data log that is read-only") << QString("logs/a.csv") << 0x4444;
    QTest::newRow("a data log that nobody may read") << QString("logs/a.csv") << 0x2222;
    QTest::newRow("an event log that is read-only") << QString("logs/a.txt") << 0x4444;
    QTest::newRow("a folder that takes no event log") << QString("logs") << 0x5555;
}

void LoadFailuresTest::a_file_that_cannot_be_written_is_not_loaded()
{
    QFETCH(QString, protected_name);
    QFETCH(int, mode);
    StationBench bench;
    // Entered by everyone, for the folder below belongs to somebody else.
    QFile::setPermissions(bench.folder.path(), QFile::Permissions(0x7777));
    const OrdinaryUser user;
    QVERIFY(user.active());
    QDir(bench.folder.path()).mkdir("logs");
    const QString path = place_log(bench, "current_one_cycle.csv", "logs/a.csv");
    if (protected_name.endsWith(".txt"))
        write_file(bench.path(protected_name), "x\n");
    QFile::setPermissions(bench.path(protected_name), QFile::Permissions(mode));

    bench.answers.choose_path(path);
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbLoadLog");
    QFile::setPermissions(bench.path(protected_name), QFile::Permissions(0x7777));
    QCOMPARE(bench.boxes(), error(UNWRITABLE));
    QVERIFY(in_start_state(*bench.station));
    QCOMPARE(content_of(path), sample_log("current_one_cycle.csv"));
    // Without a data log no event log is begun.
    QCOMPARE(QFile::exists(bench.path("logs/a.txt")), protected_name.endsWith(".txt"));
    QVERIFY(QDir(bench.path("logs")).removeRecursively());
}

void LoadFailuresTest::a_refused_log_leaves_the_start_state_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line end") << QByteArray("\n");
    QTest::newRow("no mark") << QByteArray("Battery Name:  Pack A\n");
    QTest::newRow("a mark with a blank") << QByteArray("Kestrometer Log \n");
    QTest::newRow("a mark in lower case") << QByteArray("kestrometer log\n");
    QTest::newRow("an older mark with a tab") << QByteArray("Test Parameters:\t\n");
    QTest::newRow("an older mark alone") << QByteArray("Test Parameters:\n");
    QTest::newRow("a wrong last line") << sample_log("current_two_cycles.csv") + "0.9,1\n";
    QTest::newRow("a wrong last line, older") << sample_log("older_two_cycles.csv") + "End\n";
    QTest::newRow("bytes that are no text") << QByteArray(100000, '\xff');
    QTest::newRow("zeros") << QByteArray(100000, '\0');
}

void LoadFailuresTest::a_refused_log_leaves_the_start_state()
{
    QFETCH(QByteArray, content);
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    write_file(bench.path("bad.csv"), content);
    bench.answers.seen.clear();
    bench.answers.click(QMessageBox::Yes);
    bench.answers.choose_path(bench.path("bad.csv"));
    bench.answers.handle([&](QWidget* box) {
        // Unloaded before the message.
        QVERIFY(in_start_state(*bench.station));
        static_cast<QDialog*>(box)->accept();
    });
    bench.press("pbLoadLog");
    QCOMPARE(int(bench.answers.seen.size()), 2);
    QCOMPARE(bench.boxes().last(), QString("Error: ") + UNREADABLE);
    QVERIFY(in_start_state(*bench.station));
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString());
}

void LoadFailuresTest::a_log_cut_anywhere_loads_or_leaves_the_start_state()
{
    StationBench bench;
    const QByteArray whole = "Kestrometer Log\nSerial Number: 7\nDischarge Number: 1\n"
                             "Timestamp: 2020-04-03 10:02:44\n1.0,0.003,40.97,9.98\n"
                             "2.0,0.006,40.95,9.99,0.014\nCharge Number: 2\n0.8,38.02\n";
    const QString path = bench.path("cut.csv");
    for (int length = 0; length <= whole.size(); ++length) {
        const QByteArray prefix = whole.left(length);
        QVERIFY(write_file(path, prefix));
        bench.answers.seen.clear();
        const bool readable = ReadLog(prefix).accepted;
        bench.answers.choose_path(path);
        if (!readable)
            bench.answers.click(QMessageBox::Ok);
        bench.press("pbLoadLog");
        QCOMPARE(bench.answers.pending(), 0);
        QCOMPARE(bench.boxes(), readable ? QStringList() : error(UNREADABLE));
        QCOMPARE(in_start_state(*bench.station), !readable);
        QCOMPARE(bench.station->data_log != nullptr, readable);
        QCOMPARE(content_of(path), prefix);
        bench.station->unload_test_data();
    }
}

void LoadFailuresTest::what_a_refused_log_had_told_stays()
{
    StationBench bench;
    QTextStream stream(sample_log("older_two_cycles.csv") + "End\n");
    stream.readLine();
    QVERIFY(!bench.station->read_old_log(&stream));
    const TestParameters told{3, 7200, false, 30.5, false, 37.5, true, 0.5};
    QVERIFY(same_parameters(bench.station->parameters(), told));
    QCOMPARE(bench.station->profile_name, QString("Pack C"));
    QCOMPARE(bench.station->serial_number, QString("0815"));
    QCOMPARE(bench.station->cycles.size(), 2);
    // Each cycle was shown as one of the three that the log asks for.
    QCOMPARE(bench.text("laCycleNumber"), QString("Cycle 2/3"));
}

void LoadFailuresTest::a_refused_log_is_not_touched()
{
    StationBench bench;
    const QByteArray bad = sample_log("current_one_cycle.csv") + "nonsense\n";
    write_file(bench.path("bad.csv"), bad);
    load_log(bench, bench.path("bad.csv"));
    QCOMPARE(bench.boxes(), error(UNREADABLE));
    QCOMPARE(bench.file("bad.csv"), bad);
}

void LoadFailuresTest::another_log_can_follow_a_refused_one()
{
    StationBench bench;
    write_file(bench.path("bad.csv"), sample_log("current_two_cycles.csv") + "nonsense\n");
    load_log(bench, bench.path("bad.csv"));
    load_log(bench, place_log(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(bench.boxes(), error(UNREADABLE));
    QCOMPARE(bench.station->cycles.size(), 1);
    QCOMPARE(bench.station->serial_number, QString("1042"));
}

void LoadFailuresTest::a_folder_is_no_log()
{
    StationBench bench;
    QDir(bench.folder.path()).mkdir("folder.csv");
    bench.answers.choose_path(bench.path("folder.csv"));
    bench.press("pbLoadLog");
    QCOMPARE(bench.boxes(), error(UNWRITABLE));
    QVERIFY(in_start_state(*bench.station));
}

KEST_TEST(LoadFailuresTest)
#include "tst_load_failures.moc"
