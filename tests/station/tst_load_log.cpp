#include "station/test_station.h"
#include "support/ordinary_user.h"
#include "support/station_bench.h"
#include "support/test_files.h"
#include "support/test_road.h"

#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

/** What the button Load Log does, up to every way in which it can fail. */
class LoadLogTest : public QObject
{
    Q_OBJECT

private slots:
    void a_preview_shows_the_test_of_a_log();
    void a_preview_shows_a_log_of_the_older_generation();
    void a_live_station_loads_and_can_start();
    void a_loaded_log_is_announced();
    void the_dialog_asks_for_logs_in_the_folder_of_the_station();
    void an_idle_station_asks_nothing();
    void every_other_phase_asks_first_data();
    void every_other_phase_asks_first();
    void cancelling_the_file_dialog_leaves_the_test_running();
    void a_new_log_ends_the_running_test();
    void a_log_in_use_is_refused_and_the_dialog_returns_data();
    void a_log_in_use_is_refused_and_the_dialog_returns();
    void an_event_log_is_made_where_there_is_none();
    void an_event_log_that_is_there_stays_as_it_is();
    void a_path_without_a_dot_cannot_be_loaded();
    void the_last_dot_of_the_whole_path_counts();
    void a_file_that_cannot_be_written_is_not_loaded_data();
    void a_file_that_cannot_be_written_is_not_loaded();
    void a_refused_log_leaves_the_start_state_data();
    void a_refused_log_leaves_the_start_state();
    void a_refused_log_is_not_touched();
    void another_log_can_follow_a_refused_one();
    void another_log_replaces_a_loaded_one();
    void a_folder_is_no_log();
};

namespace
{
const char* const IN_USE = "That log file is currently in use.";
const char* const UNREADABLE = "Unable to read log file.";
const char* const UNWRITABLE = "Could not open log file with write permission.";

QByteArray sample(const char* name)
{
    return content_of(QDir(KEST_TEST_DATA "/logs").filePath(name));
}

/** Puts a sample into the folder of the bench. */
QString place(const StationBench& bench, const char* name, const QString& as)
{
    const QString path = bench.path(as);
    if (!write_file(path, sample(name)))
        qFatal("No sample at %s", qPrintable(path));
    return path;
}

void load(StationBench& bench, const QString& path)
{
    bench.answers.choose_path(path);
    bench.press("pbLoadLog");
}

/** A second station without an instrument, on the bench's folder and with its answers. */
class Preview
{
public:
    void load(StationBench& bench, const QString& path)
    {
        bench.answers.choose_path(path);
        QTest::mouseClick(find<QPushButton>("pbLoadLog"), Qt::LeftButton);
    }

    template <typename Widget> Widget* find(const char* name)
    {
        return station.findChild<Widget*>(name);
    }

    QString text(const char* label)
    {
        return find<QLabel>(label)->text();
    }

    TestStation station{nullptr, nullptr};
};

bool in_start_state(const TestStation& station)
{
    const char* const freed[] = {"cbProfile", "pbDirectory", "leProfileName", "leSerialNumber"};
    for (const char* name : freed)
        if (!station.findChild<QWidget*>(name)->isEnabled())
            return false;
    return station.phase == PHASE_IDLE && station.data_log == nullptr &&
           station.text_log == nullptr && station.cycles.isEmpty() &&
           station.current_cycle == nullptr && station.serial_number.isEmpty() &&
           !station.serial_number_edited;
}

QStringList boxes(const StationBench& bench)
{
    QStringList texts;
    for (const SeenBox& box : bench.answers.seen)
        texts << box.caption + ": " + box.text;
    return texts;
}

QStringList error(const QString& text)
{
    return {"Error: " + text};
}
}  // namespace

void LoadLogTest::a_preview_shows_the_test_of_a_log()
{
    StationBench bench;
    Preview preview;
    preview.load(bench, place(bench, "current_one_cycle.csv", "a.csv"));

    QCOMPARE(boxes(bench), QStringList());
    const TestStation& station = preview.station;
    QCOMPARE(station.profile_name, QString("Pack A"));
    QCOMPARE(station.serial_number, QString("1042"));
    QCOMPARE(station.max_charge_time, 8 * 3600);
    QCOMPARE(station.low_voltage_cutoff, 30.0);
    QCOMPARE(station.final_voltage, 37.5);
    QVERIFY(station.detect_full_charge);
    QVERIFY(station.measure_internal_resistance);
    QCOMPARE(station.internal_resistance_test_interval_ah, 0.5);
    QCOMPARE(station.cycles.size(), 1);
    QCOMPARE(station.current_cycle, station.cycles.first());
    QCOMPARE(station.phase, PHASE_IDLE);
    QCOMPARE(preview.text("laPhase"), QString("Preview"));
    QCOMPARE(preview.text("laCycleNumber"), QString("Cycle 1/1"));
    QCOMPARE(preview.text("laCummAmpHours"), QString("0.50 Ah"));
    QVERIFY(preview.text("laIntResistance").startsWith("14 m"));
    QCOMPARE(preview.find<QLineEdit>("leProfileName")->text(), QString("Pack A"));
    QCOMPARE(preview.find<QLineEdit>("leSerialNumber")->text(), QString("1042"));
    QCOMPARE(station.serial_number_label.text(), QString("1042"));
    QCOMPARE(preview.find<QLineEdit>("leFinalCharge")->text(), QString("37.5"));
    QVERIFY(!preview.find<QLineEdit>("leSerialNumber")->isEnabled());
    QVERIFY(!preview.find<QComboBox>("cbProfile")->isEnabled());
    QVERIFY(!preview.find<QPushButton>("pbStartSkip")->isEnabled());

    const Series& voltage = station.current_cycle->voltage_vs_amphours;
    QCOMPARE(voltage.points, (QList<QPointF>{{0.003, 40.97}, {0.006, 40.95}, {0.502, 40.11}}));
    QCOMPARE(voltage.get_x_axis(), &TestStation::voltage_vs_amphours_chart.bottom_axis);
    QCOMPARE(voltage.pen.color(), station.color);
}

void LoadLogTest::a_preview_shows_a_log_of_the_older_generation()
{
    StationBench bench;
    Preview preview;
    preview.load(bench, place(bench, "older_two_cycles.csv", "old.csv"));

    QCOMPARE(boxes(bench), QStringList());
    QCOMPARE(preview.station.cycles.size(), 2);
    QCOMPARE(preview.station.current_cycle, preview.station.cycles.last());
    QCOMPARE(preview.text("laCycleNumber"), QString("Cycle 2/3"));
    QCOMPARE(preview.find<QSpinBox>("sbNumberOfCycles")->value(), 3);
    QCOMPARE(preview.find<QLineEdit>("leProfileName")->text(), QString("Pack C"));
    QCOMPARE(preview.find<QLineEdit>("leMaxChargeTime")->text(), QString("2"));
}

void LoadLogTest::a_live_station_loads_and_can_start()
{
    StationBench bench;
    load(bench, place(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(bench.widget<QLabel>("laPhase")->text(), QString("Configure Test"));
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QCOMPARE(bench.widget<QPushButton>("pbStartSkip")->text(), QString("Start"));
    QVERIFY(!bench.widget<QLineEdit>("leSerialNumber")->isEnabled());
}

void LoadLogTest::a_loaded_log_is_announced()
{
    StationBench bench;
    QSignalSpy cycles(bench.station.get(), &TestStation::sig_max_cycle_change);
    QSignalSpy repaints(bench.station.get(), &TestStation::sig_repaint_chart_request);
    load(bench, place(bench, "current_two_cycles.csv", "a.csv"));
    // Unloaded, two cycles begun, read, shown.
    QCOMPARE(cycles.size(), 5);
    QCOMPARE(repaints.size(), 1);

    write_file(bench.path("bad.csv"), "no log\n");
    load(bench, bench.path("bad.csv"));
    QCOMPARE(cycles.size(), 7);
    QCOMPARE(repaints.size(), 1);
}

void LoadLogTest::the_dialog_asks_for_logs_in_the_folder_of_the_station()
{
    StationBench bench;
    QDir(bench.folder.path()).mkdir("logs");
    bench.station->log_dir = bench.path("logs");
    bool asked = false;
    bench.answers.handle([&](QWidget* widget) {
        auto* dialog = qobject_cast<QFileDialog*>(widget);
        QVERIFY(dialog != nullptr);
        asked = true;
        QCOMPARE(dialog->windowTitle(), QString("Select Log File"));
        QCOMPARE(dialog->directory().absolutePath(), bench.path("logs"));
        QCOMPARE(dialog->nameFilters(), (QStringList{"All Files (*.*)", "CSV Files (*.csv)"}));
        QCOMPARE(dialog->selectedNameFilter(), QString("CSV Files (*.csv)"));
        QCOMPARE(dialog->parentWidget(), nullptr);
        QCOMPARE(dialog->fileMode(), QFileDialog::ExistingFile);
        dialog->reject();
    });
    bench.press("pbLoadLog");
    QVERIFY(asked);
}

void LoadLogTest::an_idle_station_asks_nothing()
{
    StationBench bench;
    load(bench, QString());
    QCOMPARE(boxes(bench), QStringList());
    QCOMPARE(bench.answers.pending(), 0);
}

void LoadLogTest::every_other_phase_asks_first_data()
{
    QTest::addColumn<int>("phase");
    for (int phase = PHASE_CHARGING; phase <= PHASE_DONE; ++phase)
        QTest::addRow("phase %d", phase) << phase;
}

void LoadLogTest::every_other_phase_asks_first()
{
    QFETCH(int, phase);
    StationBench bench;
    bring_to(bench, Phase(phase));
    bench.answers.seen.clear();
    const QByteArray csv = bench.csv();
    bench.answers.click(QMessageBox::No);
    bench.press("pbLoadLog");

    QCOMPARE(int(bench.answers.seen.size()), 1);
    const SeenBox& box = bench.answers.seen.front();
    QCOMPARE(box.caption, QString("Confirmation"));
    QCOMPARE(box.text,
             QString("Loading a log file will terminate the current test. Continue anyway?"));
    QCOMPARE(box.icon, QMessageBox::Question);
    QCOMPARE(int(box.buttons), int(QMessageBox::Yes | QMessageBox::No));
    QCOMPARE(box.default_button, QMessageBox::No);
    QVERIFY(!box.has_parent);
    QCOMPARE(int(bench.station->phase), phase);
    QCOMPARE(bench.csv(), csv);
}

void LoadLogTest::cancelling_the_file_dialog_leaves_the_test_running()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.answers.seen.clear();
    bench.wire.commands();
    bench.answers.click(QMessageBox::Yes);
    load(bench, QString());
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QCOMPARE(bench.wire.commands(), QByteArray());
    QCOMPARE(bench.station->cycles.size(), 1);
    bench.receive("40.00", "10.0", "D");
    QCOMPARE(last_rows(bench).size(), 2);
}

void LoadLogTest::a_new_log_ends_the_running_test()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    const QString path = place(bench, "current_two_cycles.csv", "b.csv");
    const QByteArray old_csv = bench.csv();
    bench.wire.commands();
    bench.answers.click(QMessageBox::Yes);
    load(bench, path);
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.wire.commands(), QByteArray("O"));
    QCOMPARE(bench.station->profile_name, QString("Pack: B"));
    QCOMPARE(bench.station->cycles.size(), 2);
    QCOMPARE(bench.station->data_log->fileName(), path);
    QCOMPARE(bench.file("Pack A_1042.csv"), old_csv);
}

void LoadLogTest::a_log_in_use_is_refused_and_the_dialog_returns_data()
{
    QTest::addColumn<bool>("by_itself");
    QTest::newRow("by the station itself") << true;
    QTest::newRow("by another station") << false;
}

void LoadLogTest::a_log_in_use_is_refused_and_the_dialog_returns()
{
    QFETCH(bool, by_itself);
    StationBench bench;
    Preview other;
    const QString used = place(bench, "current_one_cycle.csv", "used.csv");
    const QString free = place(bench, "current_two_cycles.csv", "free.csv");
    if (by_itself)
        load(bench, used);
    else
        other.load(bench, used);

    bench.answers.choose_path(used);
    bench.answers.click(QMessageBox::Ok);
    bench.answers.choose_path(used);
    bench.answers.click(QMessageBox::Ok);
    load(bench, free);
    QCOMPARE(boxes(bench), error(IN_USE) + error(IN_USE));
    QCOMPARE(bench.answers.pending(), 0);
    QCOMPARE(bench.station->data_log->fileName(), free);
    QCOMPARE(bench.station->cycles.size(), 2);
}

void LoadLogTest::an_event_log_is_made_where_there_is_none()
{
    StationBench bench;
    Preview preview;
    preview.load(bench, place(bench, "current_one_cycle.csv", "a.csv"));
    QVERIFY(QFile::exists(bench.path("a.txt")));
    QCOMPARE(bench.file("a.txt"), QByteArray());
}

void LoadLogTest::an_event_log_that_is_there_stays_as_it_is()
{
    StationBench bench;
    write_file(bench.path("a.txt"), "2020-04-03 09:15:02 something\n");
    load(bench, place(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(bench.file("a.txt"), QByteArray("2020-04-03 09:15:02 something\n"));
    QCOMPARE(bench.file("a.csv"), sample("current_one_cycle.csv"));
}

void LoadLogTest::a_path_without_a_dot_cannot_be_loaded()
{
    StationBench bench;
    bring_to(bench, PHASE_CHARGING);
    const QString path = place(bench, "current_one_cycle.csv", "log");
    QVERIFY(!path.contains('.'));
    bench.answers.seen.clear();
    bench.answers.click(QMessageBox::Yes);
    bench.answers.choose_path(path);
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbLoadLog");
    QCOMPARE(boxes(bench).last(),
             "Error: Could not create new filename by changing extension of '" + path +
                 "' to '.txt'.");
    QVERIFY(in_start_state(*bench.station));
    QCOMPARE(content_of(path), sample("current_one_cycle.csv"));
}

void LoadLogTest::the_last_dot_of_the_whole_path_counts()
{
    StationBench bench;
    QDir(bench.folder.path()).mkdir("logs.2020");
    load(bench, place(bench, "current_one_cycle.csv", "logs.2020/log"));
    QCOMPARE(boxes(bench), QStringList());
    QCOMPARE(bench.station->text_log->fileName(), bench.path("logs.txt"));

    load(bench, place(bench, "current_one_cycle.csv", "logs.2020/a.b.csv"));
    QCOMPARE(bench.station->text_log->fileName(), bench.path("logs.2020/a.b.txt"));
}

void LoadLogTest::a_file_that_cannot_be_written_is_not_loaded_data()
{
    QTest::addColumn<QString>("protected_name");
    QTest::addColumn<int>("mode");
    QTest::newRow("a data log that is read-only") << QString("logs/a.csv") << 0x4444;
    QTest::newRow("a data log that nobody may read") << QString("logs/a.csv") << 0x2222;
    QTest::newRow("an event log that is read-only") << QString("logs/a.txt") << 0x4444;
    QTest::newRow("a folder that takes no event log") << QString("logs") << 0x5555;
}

void LoadLogTest::a_file_that_cannot_be_written_is_not_loaded()
{
    QFETCH(QString, protected_name);
    QFETCH(int, mode);
    StationBench bench;
    // Entered by everyone, for the folder below belongs to somebody else.
    QFile::setPermissions(bench.folder.path(), QFile::Permissions(0x7777));
    const OrdinaryUser user;
    QVERIFY(user.active());
    QDir(bench.folder.path()).mkdir("logs");
    const QString path = place(bench, "current_one_cycle.csv", "logs/a.csv");
    if (protected_name.endsWith(".txt"))
        write_file(bench.path(protected_name), "x\n");
    QFile::setPermissions(bench.path(protected_name), QFile::Permissions(mode));

    bench.answers.choose_path(path);
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbLoadLog");
    QFile::setPermissions(bench.path(protected_name), QFile::Permissions(0x7777));
    QCOMPARE(boxes(bench), error(UNWRITABLE));
    QVERIFY(in_start_state(*bench.station));
    QCOMPARE(content_of(path), sample("current_one_cycle.csv"));
    QVERIFY(QDir(bench.path("logs")).removeRecursively());
}

void LoadLogTest::a_refused_log_leaves_the_start_state_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one line end") << QByteArray("\n");
    QTest::newRow("no mark") << QByteArray("Battery Name:  Pack A\n");
    QTest::newRow("a mark with a blank") << QByteArray("Kestrometer Log \n");
    QTest::newRow("a mark in lower case") << QByteArray("kestrometer log\n");
    QTest::newRow("an older mark with a tab") << QByteArray("Test Parameters:\t\n");
    QTest::newRow("an older mark alone") << QByteArray("Test Parameters:\n");
    QTest::newRow("a wrong last line") << sample("current_two_cycles.csv") + "0.9,1\n";
    QTest::newRow("a wrong last line, older") << sample("older_two_cycles.csv") + "End\n";
    QTest::newRow("bytes that are no text") << QByteArray(100000, '\xff');
    QTest::newRow("zeros") << QByteArray(100000, '\0');
}

void LoadLogTest::a_refused_log_leaves_the_start_state()
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
    QCOMPARE(boxes(bench).last(), QString("Error: ") + UNREADABLE);
    QVERIFY(in_start_state(*bench.station));
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString());
}

void LoadLogTest::a_refused_log_is_not_touched()
{
    StationBench bench;
    const QByteArray bad = sample("current_one_cycle.csv") + "nonsense\n";
    write_file(bench.path("bad.csv"), bad);
    load(bench, bench.path("bad.csv"));
    QCOMPARE(boxes(bench), error(UNREADABLE));
    QCOMPARE(bench.file("bad.csv"), bad);
}

void LoadLogTest::another_log_can_follow_a_refused_one()
{
    StationBench bench;
    write_file(bench.path("bad.csv"), sample("current_two_cycles.csv") + "nonsense\n");
    load(bench, bench.path("bad.csv"));
    load(bench, place(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(boxes(bench), error(UNREADABLE));
    QCOMPARE(bench.station->cycles.size(), 1);
    QCOMPARE(bench.station->serial_number, QString("1042"));
}

void LoadLogTest::another_log_replaces_a_loaded_one()
{
    StationBench bench;
    load(bench, place(bench, "current_two_cycles.csv", "b.csv"));
    load(bench, place(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(boxes(bench), QStringList());
    QCOMPARE(bench.station->cycles.size(), 1);
    // What was in use is free again.
    load(bench, bench.path("b.csv"));
    QCOMPARE(boxes(bench), QStringList());
    QCOMPARE(bench.station->cycles.size(), 2);
}

void LoadLogTest::a_folder_is_no_log()
{
    StationBench bench;
    QDir(bench.folder.path()).mkdir("folder.csv");
    bench.answers.choose_path(bench.path("folder.csv"));
    bench.press("pbLoadLog");
    QCOMPARE(boxes(bench), error(UNWRITABLE));
    QVERIFY(in_start_state(*bench.station));
}

QTEST_MAIN(LoadLogTest)
#include "tst_load_log.moc"
