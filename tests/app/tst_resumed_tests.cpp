#include "support/log_loading.h"
#include "support/test_files.h"
#include "support/test_program.h"
#include "support/whole_test.h"

#include "station/test_station.h"

#include <QDir>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QtTest>

/** Earlier tests taken up again, by loading or by appending, and run to Done. */
class ResumedTestsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_loaded_log_goes_on_to_done();
    void an_appended_log_goes_on_to_done();
    void a_resume_runs_a_charge_and_a_discharge_whatever_is_wanted();
    void finished_cycles_stay_as_they_were();
    void a_finished_and_resumed_test_loads_again();
    void a_resume_asks_nothing_and_keeps_the_names_locked();
    void a_log_cut_off_in_mid_line_goes_on_in_a_line_of_its_own();
    void parameters_of_the_panel_stand_in_the_next_section();
    void an_append_to_a_file_that_is_no_log_is_refused();
    void an_older_log_that_goes_on_cannot_be_loaded_again();
};

namespace
{
const QString NAME = "Pack A_1042.csv";

/** A test of three cycles, broken off in its second discharge. */
QByteArray broken_off()
{
    const QByteArray whole = content_of(test_data("whole/three_cycles.csv"));
    return whole.left(whole.indexOf("Charge Number:               3"));
}

void place(WholeTest& test, const QByteArray& log)
{
    QVERIFY(write_file(test.bench.path(NAME), log));
}

void load(WholeTest& test, const QByteArray& log)
{
    place(test, log);
    test.bench.answers.choose_path(test.bench.path(NAME));
    test.press("pbLoadLog");
    QVERIFY(test.station.data_log != nullptr);
}

/** Presses Start of a new test and answers that the log there is to be appended to. */
void append(WholeTest& test, const QByteArray& log)
{
    place(test, log);
    test.bench.answers.handle([](QWidget* dialog) {
        dialog->findChild<QRadioButton*>("rbAppend")->click();
        dialog->findChild<QPushButton*>("pbConfirm")->click();
    });
    test.start("Pack A", "1042");
}
}  // namespace

void ResumedTestsTest::a_loaded_log_goes_on_to_done()
{
    WholeTest test;
    load(test, broken_off());
    test.station.max_charge_time = 20;
    test.bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(4);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("resumed_by_loading"), QString());
    QVERIFY(test.bench.csv().startsWith(broken_off()));
    QCOMPARE(test.station.cycles.size(), 4);
}

void ResumedTestsTest::an_appended_log_goes_on_to_done()
{
    WholeTest test;
    append(test, broken_off());
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    QCOMPARE(test.station.cycles.size(), 2);
    test.station.max_charge_time = 20;
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("resumed_by_appending"), QString());
    QVERIFY(test.bench.csv().startsWith(broken_off()));
}

void ResumedTestsTest::a_resume_runs_a_charge_and_a_discharge_whatever_is_wanted()
{
    WholeTest test;
    load(test, broken_off());
    QCOMPARE(test.station.number_of_cycles, 1);
    test.station.max_charge_time = 20;
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    QVERIFY(test.run_to(PHASE_DISCHARGING));
    QCOMPARE(test.station.get_cycle_number(), 3);
    QVERIFY(test.run_to(PHASE_FINAL_CHARGE));
}

void ResumedTestsTest::finished_cycles_stay_as_they_were()
{
    WholeTest test;
    load(test, broken_off());
    const TestCycle* const first = test.station.cycles[0];
    const TestCycle* const second = test.station.cycles[1];
    const QList<QPointF> points = second->voltage_vs_amphours.points;
    const double watt_hours = second->watt_hours;
    test.press("pbStartSkip");
    test.run(1);
    test.press("pbStartSkip");
    test.run(5);
    QCOMPARE(test.station.cycles.size(), 3);
    QCOMPARE(test.station.cycles[0], first);
    QCOMPARE(test.station.cycles[1], second);
    QCOMPARE(second->voltage_vs_amphours.points, points);
    QCOMPARE(second->watt_hours, watt_hours);
}

void ResumedTestsTest::a_finished_and_resumed_test_loads_again()
{
    WholeTest test;
    // Its final charge is number 4, and so is the charge of the resume.
    load(test, content_of(test_data("whole/three_cycles.csv")));
    test.station.max_charge_time = 20;
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_DONE));
    const QByteArray csv = test.bench.csv();
    QCOMPARE(csv.count("Charge Number:               4\n"), 2);

    test.bench.answers.click(QMessageBox::Yes);
    test.bench.answers.choose_path(test.bench.path("copy.csv"));
    QVERIFY(write_file(test.bench.path("copy.csv"), csv));
    test.press("pbLoadLog");
    QCOMPARE(test.station.cycles.size(), 4);
}

void ResumedTestsTest::a_resume_asks_nothing_and_keeps_the_names_locked()
{
    WholeTest test;
    load(test, broken_off());
    test.station.low_voltage_cutoff = 0.5;
    test.station.max_charge_time = 20;
    test.press("pbStartSkip");
    QVERIFY(test.bench.answers.seen.empty());
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    for (const char* name : {"leProfileName", "leSerialNumber", "cbProfile", "pbDirectory"})
        QVERIFY(!test.bench.widget<QWidget>(name)->isEnabled());
}

void ResumedTestsTest::a_log_cut_off_in_mid_line_goes_on_in_a_line_of_its_own()
{
    WholeTest test;
    const QByteArray cut = broken_off().chopped(1);
    load(test, cut);
    QCOMPARE(test.bench.csv(), cut);
    test.press("pbStartSkip");
    QVERIFY(test.bench.csv().startsWith(cut + "\nCharge Number:               3\n"));
    test.run(2);
    QVERIFY(write_file(test.bench.path("copy.csv"), test.bench.csv()));
    const int cycles = test.station.cycles.size();

    test.bench.answers.click(QMessageBox::Yes);
    test.bench.answers.choose_path(test.bench.path("copy.csv"));
    test.press("pbLoadLog");
    QVERIFY(test.station.data_log != nullptr);
    QCOMPARE(test.station.cycles.size(), cycles);
}

void ResumedTestsTest::parameters_of_the_panel_stand_in_the_next_section()
{
    WholeTest test;
    load(test, broken_off());
    test.bench.type("leLowVoltageCutoff", "19.25");
    test.press("pbStartSkip");
    const QByteArray added = test.bench.csv().mid(broken_off().size());
    QVERIFY(added.startsWith("Charge Number:               3\n"));
    QVERIFY(added.contains("Low Voltage Cutoff (V):      19.25\n"));
}

void ResumedTestsTest::an_append_to_a_file_that_is_no_log_is_refused()
{
    WholeTest test;
    append(test, "Kestrometer Log\nnonsense\n");
    QCOMPARE(test.station.phase, PHASE_IDLE);
    QCOMPARE(test.station.data_log, nullptr);
    QCOMPARE(test.bench.file(NAME), QByteArray("Kestrometer Log\nnonsense\n"));
    QStringList texts;
    for (const SeenBox& box : test.bench.answers.seen)
        texts << box.text;
    QCOMPARE(texts, (QStringList{"Unable to read log file.", "Unable to create log file."}));
}

// The older reader is not to learn the lines of the current format: this is meant to stay so.
void ResumedTestsTest::an_older_log_that_goes_on_cannot_be_loaded_again()
{
    WholeTest test;
    load(test, sample_log("older_two_cycles.csv"));
    QCOMPARE(test.station.cycles.size(), 2);
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    test.run(2);
    const QByteArray csv = test.bench.csv();
    QVERIFY(
        csv.startsWith(sample_log("older_two_cycles.csv") + "Charge Number:               3\n"));

    QVERIFY(write_file(test.bench.path("copy.csv"), csv));
    test.bench.answers.click(QMessageBox::Yes);
    test.bench.answers.choose_path(test.bench.path("copy.csv"));
    test.press("pbLoadLog");
    QCOMPARE(test.bench.answers.seen.back().text, QString("Unable to read log file."));
    QCOMPARE(test.station.data_log, nullptr);
}

KEST_TEST(ResumedTestsTest)
#include "tst_resumed_tests.moc"
