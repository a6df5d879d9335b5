#include "support/test_files.h"
#include "support/test_program.h"
#include "watch_bench.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QFile>
#include <QtTest>

/** The watch beside the engine itself: what it says of a test that really runs. */
class WatchEngineTest : public QObject
{
    Q_OBJECT

private slots:
    void a_test_is_followed_from_start_to_done();
    void a_silent_instrument_is_found_and_its_return();
    void a_discharge_without_a_load_is_found();
    void waiting_for_the_operator_is_found();
    void botched_tests_are_found();
    void a_step_that_does_not_end_is_found();
    void new_test_ends_a_test();
    void a_loaded_log_is_a_preview_until_its_test_goes_on();
    void a_watch_that_comes_later_knows_what_runs();
    void a_watch_that_comes_back_remembers_what_ran();
    void a_renamed_log_is_the_same_test();
    void a_deleted_log_ends_and_a_new_one_begins();
    void a_cut_log_is_read_anew();
    void the_end_of_a_second_discharge_is_expected();
    void two_stations_on_one_log_run_as_long_as_one_of_them();
};

namespace
{
const QString CSV = "Pack A_1042.csv";
const QString TXT = "Pack A_1042.txt";

/** Two discharges of half a minute, and no question between them. */
void prepare(WatchBench& bench)
{
    bench.test.station.number_of_cycles = 2;
    bench.test.station.max_charge_time = 60;
    bench.test.station.charge_test_interval = 10;
}

void start(WatchBench& bench)
{
    prepare(bench);
    bench.test.start();
}

void press_and_agree(WatchBench& bench, const char* button)
{
    bench.test.bench.answers.click(QMessageBox::Ok);
    bench.test.press(button);
}
}  // namespace

void WatchEngineTest::a_test_is_followed_from_start_to_done()
{
    WatchBench bench;
    start(bench);
    QCOMPARE(bench.run(2), QString("charging"));
    QVERIFY(bench.folder.seen.test_runs);
    QCOMPARE(bench.run_to(PHASE_DISCHARGING), QString("discharging"));
    const TestFacts& facts = bench.folder.seen.situations.first().facts;
    QCOMPARE(facts.battery, QString("Pack A"));
    QCOMPARE(facts.serial_number, QString("1042"));
    QCOMPARE(facts.phase, QString("Discharging"));
    QCOMPARE(facts.cycle, 1);
    QCOMPARE(facts.amps, bench.test.station.kestrometer->current);
    QCOMPARE(facts.volts, bench.test.station.kestrometer->voltage);
    QVERIFY(facts.row_age <= 1);
    QStringList found;
    while (bench.test.station.phase != PHASE_DONE) {
        found << bench.run(1);
        found.removeDuplicates();
        QVERIFY(bench.test.station.cycles.size() <= 2);
    }
    found.sort();
    QCOMPARE(found, QStringList({"charging", "discharging"}));
    QCOMPARE(bench.run(4), QString("done"));
    QVERIFY(!bench.folder.seen.test_runs);
    QCOMPARE(bench.folder.situation(Condition::Done)->facts.cycle, 2);
    QCOMPARE(bench.folder.situation(Condition::Done)->log,
             QFile::encodeName(bench.test.bench.path(CSV)));
}

void WatchEngineTest::a_silent_instrument_is_found_and_its_return()
{
    WatchBench bench;
    start(bench);
    bench.run(5);
    bench.test.link.set_fault("silence 40");
    QCOMPARE(bench.run(28), QString("charging"));
    QCOMPARE(bench.run(4), QString("charging instrument-silent"));
    const QDateTime since = bench.folder.situation(Condition::InstrumentSilent)->since;
    bench.run(2);
    QCOMPARE(bench.folder.situation(Condition::InstrumentSilent)->since, since);
    QVERIFY(bench.folder.situation(Condition::InstrumentSilent)
                ->detail.contains("reset 6 times without an answer"));
    QCOMPARE(bench.run(10), QString("charging"));
}

void WatchEngineTest::a_discharge_without_a_load_is_found()
{
    WatchBench bench;
    start(bench);
    bench.run_to(PHASE_DISCHARGING);
    bench.test.link.set_fault("no-load");
    QCOMPARE(bench.run(28), QString("discharging"));
    QCOMPARE(bench.run(4), QString("discharging no-current"));
    bench.test.link.set_fault("load");
    QCOMPARE(bench.run(3), QString("discharging"));
    bench.test.link.set_fault("silence 60");
    QCOMPARE(bench.run(35), QString("discharging instrument-silent"));
}

void WatchEngineTest::waiting_for_the_operator_is_found()
{
    WatchBench bench;
    prepare(bench);
    bench.test.station.prompt_to_discharge = true;
    bench.test.start();
    QCOMPARE(bench.run_to(PHASE_READY_FOR_DISCHARGE), QString("waits-for-operator"));
    QVERIFY(bench.folder.seen.test_runs);
    QCOMPARE(bench.run(100), QString("waits-for-operator"));
    bench.test.press("pbStartSkip");
    QCOMPARE(bench.run(4), QString("discharging"));
}

void WatchEngineTest::botched_tests_are_found()
{
    WatchBench bench;
    prepare(bench);
    bench.test.station.measure_internal_resistance = true;
    bench.test.station.internal_resistance_test_interval_ah = 0.01;
    bench.test.link.set_fault("voltage-after-off -0.2");
    bench.test.start();
    bench.run_to(PHASE_DISCHARGING);
    int botched = 0;
    while (botched < 3 && bench.test.station.phase != PHASE_FINAL_CHARGE) {
        const QString found = bench.run(1);
        botched = bench.test.bench.txt().count("botched");
        QCOMPARE(found.contains("resistance-tests-fail"), botched >= 3);
    }
    QCOMPARE(botched, 3);
}

void WatchEngineTest::a_step_that_does_not_end_is_found()
{
    WatchBench bench;
    prepare(bench);
    bench.test.station.measure_internal_resistance = true;
    bench.test.station.internal_resistance_test_interval_ah = 0.005;
    bench.test.start();
    bench.run_to(PHASE_DISCHARGING);
    bench.test.link.set_fault("ignore-commands");
    QVERIFY(bench.test.run_to(PHASE_IR_TEST, 60));
    QCOMPARE(bench.run(100), QString("testing-resistance"));
    QCOMPARE(bench.run(30), QString("testing-resistance step-does-not-end"));
}

void WatchEngineTest::new_test_ends_a_test()
{
    WatchBench bench;
    start(bench);
    QCOMPARE(bench.run(5), QString("charging"));
    press_and_agree(bench, "pbNewTest");
    QCOMPARE(bench.run(2), QString("ended"));
    QVERIFY(!bench.folder.seen.test_runs);
}

void WatchEngineTest::a_loaded_log_is_a_preview_until_its_test_goes_on()
{
    WatchBench bench;
    QVERIFY(QFile::copy(test_data("whole/one_cycle.csv"), bench.test.bench.path("old.csv")));
    QVERIFY(QFile::copy(test_data("whole/one_cycle.txt"), bench.test.bench.path("old.txt")));
    QCOMPARE(bench.run(12), QString());
    bench.test.bench.answers.choose_path(bench.test.bench.path("old.csv"));
    bench.test.press("pbLoadLog");
    QCOMPARE(bench.run(30), QString());
    prepare(bench);
    bench.test.press("pbStartSkip");
    QCOMPARE(bench.run(4), QString("charging"));
    QCOMPARE(bench.folder.seen.situations.first().facts.cycle, 2);
}

void WatchEngineTest::a_watch_that_comes_later_knows_what_runs()
{
    WatchBench bench;
    start(bench);
    bench.run_to(PHASE_DONE);
    WatchedFolder late(bench.test.bench.folder.path());
    QCOMPARE(late.look_after(0), QString("done"));
    bench.test.press("pbNewTest");
    bench.test.bench.answers.choose_path(bench.test.bench.path(CSV));
    bench.test.press("pbLoadLog");
    WatchedFolder later(bench.test.bench.folder.path());
    QCOMPARE(later.look_after(0), QString());
}

void WatchEngineTest::a_watch_that_comes_back_remembers_what_ran()
{
    WatchBench bench;
    start(bench);
    bench.run(5);
    press_and_agree(bench, "pbNewTest");
    bench.folder.restart();
    QCOMPARE(bench.folder.look_after(100), QString("ended"));
    const QDateTime since = bench.folder.situation(Condition::Ended)->since;
    bench.folder.restart();
    QCOMPARE(bench.folder.look_after(100), QString("ended"));
    QCOMPARE(bench.folder.situation(Condition::Ended)->since.toSecsSinceEpoch(),
             since.toSecsSinceEpoch());
    QCOMPARE(bench.folder.look_after(86401), QString());
}

void WatchEngineTest::a_renamed_log_is_the_same_test()
{
    WatchBench bench;
    start(bench);
    bench.run(5);
    QVERIFY(QFile::rename(bench.test.bench.path(CSV), bench.test.bench.path("other.csv")));
    QCOMPARE(bench.run(3), QString("charging"));
    QVERIFY(QFile::rename(bench.test.bench.path(TXT), bench.test.bench.path("other.txt")));
    QCOMPARE(bench.run_to(PHASE_DISCHARGING), QString("discharging"));
    QCOMPARE(bench.folder.look_at("other.csv"), QString("discharging"));
}

void WatchEngineTest::a_deleted_log_ends_and_a_new_one_begins()
{
    WatchBench bench;
    start(bench);
    bench.run(5);
    QVERIFY(QFile::remove(bench.test.bench.path(CSV)));
    QVERIFY(QFile::remove(bench.test.bench.path(TXT)));
    QCOMPARE(bench.run(3), QString("ended"));
    press_and_agree(bench, "pbNewTest");
    start(bench);
    QCOMPARE(bench.run(3), QString("charging"));
}

void WatchEngineTest::a_cut_log_is_read_anew()
{
    WatchBench bench;
    start(bench);
    bench.run(20);
    const QByteArray head = bench.test.bench.csv().left(400);
    QVERIFY(QFile::resize(bench.test.bench.path(CSV), head.lastIndexOf('\n') + 1));
    QCOMPARE(bench.run(2), QString("charging"));
    QCOMPARE(bench.run_to(PHASE_DISCHARGING), QString("discharging"));
    QCOMPARE(bench.folder.seen.situations.first().facts.battery, QString("Pack A"));
    QCOMPARE(bench.folder.seen.situations.first().facts.amps,
             bench.test.station.kestrometer->current);
}

void WatchEngineTest::the_end_of_a_second_discharge_is_expected()
{
    WatchBench bench;
    start(bench);
    bench.run_to(PHASE_DISCHARGING);
    QVERIFY(!bench.folder.situation(Condition::Discharging)->facts.end_to.isValid());
    bench.run_to(PHASE_CHARGING);
    bench.run_to(PHASE_DISCHARGING);
    const TestFacts facts = bench.folder.situation(Condition::Discharging)->facts;
    QVERIFY(std::isnan(facts.end_error));
    while (bench.test.station.phase == PHASE_DISCHARGING)
        bench.run(1);
    QVERIFY(facts.end_from <= bench.folder.now.time);
    QVERIFY(facts.end_to >= bench.folder.now.time.addSecs(-2));
    QVERIFY(facts.end_from.secsTo(facts.end_to) < 10);
}

void WatchEngineTest::two_stations_on_one_log_run_as_long_as_one_of_them()
{
    WatchBench bench;
    start(bench);
    bench.run(5);
    auto second = std::make_unique<QFile>(bench.test.bench.path(CSV));
    QVERIFY(second->open(QIODevice::ReadWrite));
    bench.run(12);
    press_and_agree(bench, "pbNewTest");
    second->seek(second->size());
    second->write("99.0,25.20\n");
    second->flush();
    QCOMPARE(bench.run(2), QString("charging"));
    second.reset();
    QCOMPARE(bench.run(2), QString("ended"));
}

KEST_TEST(WatchEngineTest)
#include "tst_watch_engine.moc"
