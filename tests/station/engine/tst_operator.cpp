#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

/** What the operator's buttons do to a test in each of its phases. */
class OperatorTest : public QObject
{
    Q_OBJECT

private slots:
    void the_button_acts_by_phase_data();
    void the_button_acts_by_phase();
    void a_forbidden_skip_is_refused_data();
    void a_forbidden_skip_is_refused();
    void a_done_test_needs_more_cycles_first();
    void a_done_test_goes_on_in_the_same_log();
    void a_loaded_test_goes_on_with_a_charge();
    void a_skipped_first_charge_never_prompts();
    void a_running_test_locks_its_names();
    void locking_concerns_four_controls();
    void new_test_asks_only_while_a_test_runs_data();
    void new_test_asks_only_while_a_test_runs();
    void new_test_keeps_the_parameters();
    void a_second_test_follows_a_new_test();
    void lines_count_while_the_question_is_open();
    void closing_is_left_to_the_window_data();
    void closing_is_left_to_the_window();
};

namespace
{
const char* const IDENTITY[] = {"cbProfile", "pbDirectory", "leProfileName", "leSerialNumber"};

bool all_identity_enabled(StationBench& bench, bool enabled)
{
    for (const char* name : IDENTITY)
        if (bench.widget<QWidget>(name)->isEnabled() != enabled)
            return false;
    return true;
}

}  // namespace

void OperatorTest::the_button_acts_by_phase_data()
{
    QTest::addColumn<Phase>("phase");
    QTest::addColumn<int>("discharges_before");
    QTest::addColumn<int>("cycles_wanted");
    QTest::addColumn<Phase>("next");
    QTest::addColumn<QString>("text");
    const QString discharging = "Switching to phase Discharging because User clicked 'Skip'";
    const QString charging = "Switching to phase Charging because User clicked 'Skip'";
    const QString final_charge = "Switching to phase Charging (final) because User clicked 'Skip'";
    const QString done = "Switching to phase Done because User clicked 'Skip'";
    QTest::newRow("charging") << PHASE_CHARGING << 0 << 1 << PHASE_DISCHARGING << discharging;
    QTest::newRow("charging, all cycles done")
        << PHASE_CHARGING << 2 << 1 << PHASE_DISCHARGING << discharging;
    QTest::newRow("charging on") << PHASE_CHARGING_LEVELED << 0 << 1 << PHASE_DISCHARGING
                                 << discharging;
    QTest::newRow("ready") << PHASE_READY_FOR_DISCHARGE << 0 << 1 << PHASE_DISCHARGING
                           << discharging;
    QTest::newRow("ready for the third")
        << PHASE_READY_FOR_DISCHARGE << 2 << 3 << PHASE_DISCHARGING << discharging;
    QTest::newRow("only discharge")
        << PHASE_DISCHARGING << 0 << 1 << PHASE_FINAL_CHARGE << final_charge;
    QTest::newRow("last discharge")
        << PHASE_DISCHARGING << 1 << 2 << PHASE_FINAL_CHARGE << final_charge;
    QTest::newRow("beyond the last discharge")
        << PHASE_DISCHARGING << 1 << 1 << PHASE_FINAL_CHARGE << final_charge;
    QTest::newRow("first of two") << PHASE_DISCHARGING << 0 << 2 << PHASE_CHARGING << charging;
    QTest::newRow("one more wanted") << PHASE_DISCHARGING << 1 << 3 << PHASE_CHARGING << charging;
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE << 0 << 1 << PHASE_DONE << done;
    QTest::newRow("done, more wanted") << PHASE_DONE << 0 << 2 << PHASE_CHARGING << charging;
}

void OperatorTest::the_button_acts_by_phase()
{
    QFETCH(Phase, phase);
    QFETCH(int, discharges_before);
    QFETCH(int, cycles_wanted);
    QFETCH(Phase, next);
    QFETCH(QString, text);
    StationBench bench;
    bring_to(bench, phase, discharges_before);
    bench.station->number_of_cycles = cycles_wanted;
    const int cycles = bench.station->cycles.size();
    const QStringList before = events(bench);
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->phase, next);
    QCOMPARE(events(bench), before + QStringList{text});
    QCOMPARE(bench.station->cycles.size(), cycles + (next == PHASE_DISCHARGING ? 1 : 0));
    QVERIFY(bench.answers.seen.empty());
}

void OperatorTest::a_forbidden_skip_is_refused_data()
{
    QTest::addColumn<Phase>("phase");
    for (const Phase phase :
         {PHASE_FULL_CHARGE_TEST, PHASE_IR_TEST, PHASE_IR_RECOVERY, PHASE_FINAL_CHARGE_TEST})
        QTest::addRow("phase %d", phase) << phase;
}

void OperatorTest::a_forbidden_skip_is_refused()
{
    QFETCH(Phase, phase);
    StationBench bench;
    bring_to(bench, phase);
    const QByteArray txt = bench.txt();
    bench.wire.commands();
    bench.press("pbStartSkip");
    QVERIFY(bench.answers.seen.empty());

    bench.answers.click(QMessageBox::Ok);
    QMetaObject::invokeMethod(bench.station.get(), "on_pbStartSkip_clicked");
    QCOMPARE(int(bench.answers.seen.size()), 1);
    const SeenBox& box = bench.answers.seen.front();
    QCOMPARE(box.caption, QString("Error"));
    QCOMPARE(box.text, QString("The 'skip' button should not be clickable at this time."));
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(bench.station->phase, phase);
    QCOMPARE(bench.txt(), txt);
    QCOMPARE(bench.wire.commands(), QByteArray());
}

void OperatorTest::a_done_test_needs_more_cycles_first()
{
    StationBench bench;
    bring_to(bench, PHASE_DONE);
    const QByteArray txt = bench.txt();
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbStartSkip");
    QCOMPARE(int(bench.answers.seen.size()), 1);
    QCOMPARE(bench.answers.seen.front().caption, QString("Error"));
    QCOMPARE(bench.answers.seen.front().text,
             QString("Please increase the number of cycles first."));
    QCOMPARE(bench.station->phase, PHASE_DONE);
    QCOMPARE(bench.txt(), txt);
}

void OperatorTest::a_done_test_goes_on_in_the_same_log()
{
    StationBench bench;
    bring_to(bench, PHASE_DONE);
    const QByteArray csv = bench.csv();
    const QFile* log = bench.station->data_log;
    bench.widget<QSpinBox>("sbNumberOfCycles")->stepUp();
    QCOMPARE(bench.station->phase, PHASE_DONE);
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(events(bench).last(),
             QString("Switching to phase Charging because User clicked 'Skip'"));
    QCOMPARE(static_cast<const QFile*>(bench.station->data_log), log);
    QVERIFY(bench.csv().startsWith(csv));
    // The number of the final charge comes again.
    QVERIFY(bench.csv().mid(csv.size()).startsWith("Charge Number:               2\n"));
    bench.receive("41.00", "1.0", "C");
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->get_cycle_number(), 2);
    bench.receive("18.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
}

void OperatorTest::a_loaded_test_goes_on_with_a_charge()
{
    StationBench bench;
    TestStation& station = *bench.station;
    bench.type_names("Pack A", "1042");
    station.data_log = new QFile(bench.path("loaded.csv"));
    station.text_log = new QFile(bench.path("loaded.txt"));
    QVERIFY(station.ui_safe_open_log());
    station.unlock_controls();
    bench.press("pbStartSkip");
    QCOMPARE(station.phase, PHASE_CHARGING);
    QVERIFY(all_identity_enabled(bench, false));
    QCOMPARE(events(bench), QStringList{"Switching to phase Charging because User clicked 'Skip'"});
    // No new head of file: the next section follows what was there.
    QVERIFY(bench.csv().startsWith("Charge Number:               1\n"));
    QVERIFY(bench.answers.seen.empty());
}

void OperatorTest::a_skipped_first_charge_never_prompts()
{
    StationBench bench;
    bench.widget<QCheckBox>("cbPromptToDischarge")->click();
    QVERIFY(bench.station->prompt_to_discharge);
    bring_to(bench, PHASE_CHARGING);
    bench.press("pbStartSkip");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QCOMPARE(bench.station->get_cycle_number(), 1);
}

void OperatorTest::a_running_test_locks_its_names()
{
    StationBench bench;
    QVERIFY(all_identity_enabled(bench, true));
    bring_to(bench, PHASE_DISCHARGING);
    QVERIFY(all_identity_enabled(bench, false));
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbNewTest");
    QVERIFY(all_identity_enabled(bench, true));
}

void OperatorTest::locking_concerns_four_controls()
{
    StationBench bench;
    const auto enabled_widgets = [&bench] {
        QStringList names;
        // The list of the profiles is a window of its own, which follows its box.
        for (const QWidget* widget : bench.station->findChildren<QWidget*>())
            if (widget->isEnabled() && !widget->objectName().startsWith("qt_") &&
                widget->window() == bench.station.get())
                names += widget->objectName();
        return names;
    };
    QStringList before = enabled_widgets();
    bench.station->lock_controls();
    QStringList after = enabled_widgets();
    QVERIFY(all_identity_enabled(bench, false));
    for (const char* name : IDENTITY)
        QCOMPARE(before.removeAll(name), 1);
    QCOMPARE(after, before);
    bench.station->unlock_controls();
    QVERIFY(all_identity_enabled(bench, true));
}

void OperatorTest::new_test_asks_only_while_a_test_runs_data()
{
    add_all_phases();
}

void OperatorTest::new_test_asks_only_while_a_test_runs()
{
    QFETCH(int, phase);
    const bool asks = phase != PHASE_IDLE && phase != PHASE_DONE;
    StationBench bench;
    bring_to(bench, Phase(phase));
    const QByteArray txt = bench.txt();
    const int cycles = bench.station->cycles.size();
    bench.wire.commands();
    if (asks) {
        bench.answers.click(QMessageBox::Cancel);
        bench.press("pbNewTest");
        QCOMPARE(int(bench.answers.seen.size()), 1);
        const SeenBox& box = bench.answers.seen.front();
        QCOMPARE(box.caption, QString("Are you sure?"));
        QCOMPARE(box.text, QString("This will abort the test in progress."));
        QCOMPARE(box.icon, QMessageBox::Question);
        QCOMPARE(int(box.buttons), int(QMessageBox::Ok | QMessageBox::Cancel));
        QCOMPARE(box.default_button, QMessageBox::Cancel);
        QVERIFY(!box.has_parent);
        // The box that is simply closed counts as Cancel.
        bench.answers.click(QMessageBox::NoButton);
        bench.press("pbNewTest");
        QCOMPARE(bench.station->phase, Phase(phase));
        QCOMPARE(bench.station->cycles.size(), cycles);
        QCOMPARE(bench.wire.commands(), QByteArray());
        bench.answers.click(QMessageBox::Ok);
    }
    bench.press("pbNewTest");
    QCOMPARE(int(bench.answers.seen.size()), asks ? 3 : 0);
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QVERIFY(bench.station->cycles.isEmpty());
    QVERIFY(bench.station->current_cycle == nullptr);
    QVERIFY(bench.station->data_log == nullptr && bench.station->text_log == nullptr);
    QCOMPARE(bench.instrument->requested_state, Off);
    // The logs are closed before the phase changes.
    QCOMPARE(bench.txt(), txt);
}

void OperatorTest::new_test_keeps_the_parameters()
{
    StationBench bench;
    bench.type("leLowVoltageCutoff", "21.5");
    bench.type("leFinalCharge", "37.5");
    bench.type("leMaxChargeTime", "2");
    bring_to(bench, PHASE_DISCHARGING, 1);
    QSignalSpy cycles_changed(bench.station.get(), &TestStation::sig_max_cycle_change);
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbNewTest");
    QCOMPARE(bench.station->low_voltage_cutoff, 21.5);
    QCOMPARE(bench.station->final_voltage, 37.5);
    QCOMPARE(bench.station->max_charge_time, 7200);
    QCOMPARE(bench.station->number_of_cycles, 2);
    QCOMPARE(bench.station->profile_name, QString("Pack A"));
    // No profile is chosen that could offer the begin of a number.
    QCOMPARE(bench.widget<QComboBox>("cbProfile")->currentText(), QString("Select Profile..."));
    QCOMPARE(bench.station->serial_number, QString());
    QCOMPARE(bench.widget<QLineEdit>("leSerialNumber")->text(), QString());
    QVERIFY(!bench.station->serial_number_edited);
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QCOMPARE(cycles_changed.count(), 1);
}

void OperatorTest::a_second_test_follows_a_new_test()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    const QByteArray first = bench.csv();
    bench.answers.click(QMessageBox::Ok);
    bench.press("pbNewTest");
    bench.receive("40.00", "0.0", "O");
    bench.start("Pack B", "7");
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    QCOMPARE(bench.station->get_cycle_number(), 0);
    QVERIFY(bench.csv().startsWith("Kestrometer Log\nBattery Name:  Pack B\nSerial Number: 7\n"
                                   "Charge Number:               1\n"));
    QCOMPARE(bench.file("Pack A_1042.csv"), first);
}

void OperatorTest::lines_count_while_the_question_is_open()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.answers.handle([&bench](QWidget* box) {
        bench.receive("39.00", "10.0", "D");
        bench.receive("18.00", "10.0", "D");
        bench.receive("30.00", "0.0", "C");
        static_cast<QMessageBox*>(box)->button(QMessageBox::Cancel)->click();
    });
    bench.press("pbNewTest");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    QCOMPARE(bench.station->current_cycle->voltage_vs_amphours.points.size(), 3);
    QCOMPARE(last_rows(bench), QStringList{"1.0,30.00"});
    bench.answers.handle([&bench](QWidget* box) {
        bench.receive_after(301.0, "41.00", "0.0", "C");
        bench.receive("41.00", "0.0", "C");
        QCOMPARE(bench.station->phase, PHASE_DONE);
        static_cast<QMessageBox*>(box)->button(QMessageBox::Ok)->click();
    });
    bench.press("pbNewTest");
    QCOMPARE(bench.station->phase, PHASE_IDLE);
    QCOMPARE(bench.answers.pending(), 0);
}

void OperatorTest::closing_is_left_to_the_window_data()
{
    add_all_phases();
}

void OperatorTest::closing_is_left_to_the_window()
{
    QFETCH(int, phase);
    StationBench bench;
    bring_to(bench, Phase(phase));
    QSignalSpy requests(bench.station.get(), &TestStation::sig_close_request);
    bench.press("pbClose");
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.first().first().value<TestStation*>(), bench.station.get());
    QCOMPARE(bench.station->phase, Phase(phase));
    QVERIFY(bench.answers.seen.empty());
}

KEST_TEST(OperatorTest)
#include "tst_operator.moc"
