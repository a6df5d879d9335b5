#include "station/test_station.h"
#include "support/log_loading.h"
#include "support/test_files.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

/** What the button Load Log does: the dialog, the files in use, what is shown afterwards. */
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
    void another_log_replaces_a_loaded_one();
};

namespace
{
const char* const IN_USE = "That log file is currently in use.";

QStringList error(const QString& text)
{
    return {"Error: " + text};
}
}  // namespace

void LoadLogTest::a_preview_shows_the_test_of_a_log()
{
    StationBench bench;
    PreviewStation preview;
    preview.load(bench, place_log(bench, "current_one_cycle.csv", "a.csv"));

    QCOMPARE(bench.boxes(), QStringList());
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
    PreviewStation preview;
    preview.load(bench, place_log(bench, "older_two_cycles.csv", "old.csv"));

    QCOMPARE(bench.boxes(), QStringList());
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
    load_log(bench, place_log(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(bench.text("laPhase"), QString("Configure Test"));
    QVERIFY(bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QCOMPARE(bench.widget<QPushButton>("pbStartSkip")->text(), QString("Start"));
    QVERIFY(!bench.widget<QLineEdit>("leSerialNumber")->isEnabled());
}

void LoadLogTest::a_loaded_log_is_announced()
{
    StationBench bench;
    QSignalSpy cycles(bench.station.get(), &TestStation::sig_max_cycle_change);
    QSignalSpy repaints(bench.station.get(), &TestStation::sig_repaint_chart_request);
    load_log(bench, place_log(bench, "current_two_cycles.csv", "a.csv"));
    // Unloaded, two cycles begun, read, shown.
    QCOMPARE(cycles.size(), 5);
    QCOMPARE(repaints.size(), 1);

    write_file(bench.path("bad.csv"), "no log\n");
    load_log(bench, bench.path("bad.csv"));
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
    load_log(bench, QString());
    QCOMPARE(bench.boxes(), QStringList());
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
    load_log(bench, QString());
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
    const QString path = place_log(bench, "current_two_cycles.csv", "b.csv");
    const QByteArray old_csv = bench.csv();
    bench.wire.commands();
    bench.answers.click(QMessageBox::Yes);
    load_log(bench, path);
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
    PreviewStation other;
    const QString used = place_log(bench, "current_one_cycle.csv", "used.csv");
    const QString free = place_log(bench, "current_two_cycles.csv", "free.csv");
    if (by_itself)
        load_log(bench, used);
    else
        other.load(bench, used);

    bench.answers.choose_path(used);
    bench.answers.click(QMessageBox::Ok);
    bench.answers.choose_path(used);
    bench.answers.click(QMessageBox::Ok);
    load_log(bench, free);
    QCOMPARE(bench.boxes(), error(IN_USE) + error(IN_USE));
    QCOMPARE(bench.answers.pending(), 0);
    QCOMPARE(bench.station->data_log->fileName(), free);
    QCOMPARE(bench.station->cycles.size(), 2);
}

void LoadLogTest::an_event_log_is_made_where_there_is_none()
{
    StationBench bench;
    PreviewStation preview;
    preview.load(bench, place_log(bench, "current_one_cycle.csv", "a.csv"));
    QVERIFY(QFile::exists(bench.path("a.txt")));
    QCOMPARE(bench.file("a.txt"), QByteArray());
}

void LoadLogTest::an_event_log_that_is_there_stays_as_it_is()
{
    StationBench bench;
    write_file(bench.path("a.txt"), "2020-04-03 09:15:02 something\n");
    load_log(bench, place_log(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(bench.file("a.txt"), QByteArray("2020-04-03 09:15:02 something\n"));
    QCOMPARE(bench.file("a.csv"), sample_log("current_one_cycle.csv"));
}

void LoadLogTest::another_log_replaces_a_loaded_one()
{
    StationBench bench;
    load_log(bench, place_log(bench, "current_two_cycles.csv", "b.csv"));
    load_log(bench, place_log(bench, "current_one_cycle.csv", "a.csv"));
    QCOMPARE(bench.boxes(), QStringList());
    QCOMPARE(bench.station->cycles.size(), 1);
    // What was in use is free again.
    load_log(bench, bench.path("b.csv"));
    QCOMPARE(bench.boxes(), QStringList());
    QCOMPARE(bench.station->cycles.size(), 2);
}

KEST_TEST(LoadLogTest)
#include "tst_load_log.moc"
