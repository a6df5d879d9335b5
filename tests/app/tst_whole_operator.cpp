#include "support/phase_tour.h"
#include "support/test_program.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QPushButton>
#include <QSpinBox>
#include <QtTest>

/** What the operator does in the midst of a test. */
class WholeOperatorTest : public QObject
{
    Q_OBJECT

private slots:
    void skips_from_every_phase_that_allows_it();
    void start_skip_is_usable_in_some_phases_data();
    void start_skip_is_usable_in_some_phases();
    void new_test_is_declined_and_then_confirmed_data();
    void new_test_is_declined_and_then_confirmed();
    void a_new_test_follows_on_the_same_station();
    void cycles_are_added_in_the_final_charge();
    void cycles_are_added_after_done();
    void a_station_closed_in_mid_test_switches_off();
};

namespace
{
/** A station whose full charge detection and charge tests come within seconds. */
void begin(WholeTest& test)
{
    test.station.max_charge_time = 60;
    test.station.charge_test_interval = 5;
    test.station.internal_resistance_test_interval_ah = 0.01;
    test.station.detect_full_charge = true;
    test.start();
}

QSpinBox* cycles_box(WholeTest& test)
{
    return test.bench.widget<QSpinBox>("sbNumberOfCycles");
}

QPushButton* start_skip(WholeTest& test)
{
    return test.bench.widget<QPushButton>("pbStartSkip");
}
}  // namespace

void WholeOperatorTest::skips_from_every_phase_that_allows_it()
{
    WholeTest test;
    cycles_box(test)->setValue(4);
    begin(test);
    const auto skip_after = [&test](int seconds, Phase next) {
        test.run(seconds);
        test.press("pbStartSkip");
        QCOMPARE(test.station.phase, next);
    };
    skip_after(2, PHASE_DISCHARGING);
    skip_after(2, PHASE_CHARGING);
    test.level_off();
    QVERIFY(test.run_to(PHASE_CHARGING_LEVELED));
    skip_after(2, PHASE_DISCHARGING);
    skip_after(2, PHASE_CHARGING);
    test.station.prompt_to_discharge = true;
    test.level_off();
    QVERIFY(test.run_to(PHASE_READY_FOR_DISCHARGE));
    skip_after(2, PHASE_DISCHARGING);
    skip_after(2, PHASE_CHARGING);
    skip_after(2, PHASE_DISCHARGING);
    skip_after(2, PHASE_FINAL_CHARGE);
    skip_after(2, PHASE_DONE);

    test.bench.answers.click(QMessageBox::Ok);
    skip_after(2, PHASE_DONE);
    QCOMPARE(test.difference_from("skips"), QString());
    QCOMPARE(test.bench.answers.seen.size(), size_t(1));
    const SeenBox& box = test.bench.answers.seen[0];
    QCOMPARE(box.caption, QString("Error"));
    QCOMPARE(box.text, QString("Please increase the number of cycles first."));
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(int(box.buttons), int(QMessageBox::Ok));
}

void WholeOperatorTest::start_skip_is_usable_in_some_phases_data()
{
    QTest::addColumn<Phase>("phase");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("text");
    QTest::newRow("charge") << PHASE_CHARGING << true << "Skip";
    QTest::newRow("levelled charge") << PHASE_CHARGING_LEVELED << true << "Skip";
    QTest::newRow("full charge test") << PHASE_FULL_CHARGE_TEST << false << "Skip";
    QTest::newRow("prompt") << PHASE_READY_FOR_DISCHARGE << true << "Start";
    QTest::newRow("discharge") << PHASE_DISCHARGING << true << "Skip";
    QTest::newRow("resistance test") << PHASE_IR_TEST << false << "Skip";
    QTest::newRow("recovery") << PHASE_IR_RECOVERY << false << "Skip";
    QTest::newRow("final charge") << PHASE_FINAL_CHARGE << true << "Skip";
    QTest::newRow("final charge test") << PHASE_FINAL_CHARGE_TEST << false << "Skip";
    QTest::newRow("done") << PHASE_DONE << true << "Start";
}

void WholeOperatorTest::start_skip_is_usable_in_some_phases()
{
    QFETCH(Phase, phase);
    PhaseTour tour;
    WholeTest& test = tour.test;
    QVERIFY(tour.reach(phase));
    QTEST(start_skip(test)->isEnabled(), "enabled");
    QTEST(start_skip(test)->text(), "text");
    if (start_skip(test)->isEnabled())
        return;
    // A click that finds the button disabled is no click.
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, phase);
    QVERIFY(test.bench.answers.seen.empty());
}

void WholeOperatorTest::new_test_is_declined_and_then_confirmed_data()
{
    start_skip_is_usable_in_some_phases_data();
}

void WholeOperatorTest::new_test_is_declined_and_then_confirmed()
{
    QFETCH(Phase, phase);
    PhaseTour tour;
    WholeTest& test = tour.test;
    QVERIFY(tour.reach(phase));
    const bool asks = phase != PHASE_DONE;
    const QByteArray csv = test.bench.csv();
    const QByteArray txt = test.bench.txt();
    if (asks) {
        test.bench.answers.click(QMessageBox::Cancel);
        test.press("pbNewTest");
        QCOMPARE(test.station.phase, phase);
        test.bench.answers.click(QMessageBox::Ok);
    }
    test.press("pbNewTest");
    QCOMPARE(test.station.phase, PHASE_IDLE);
    QVERIFY(test.station.cycles.isEmpty());
    QVERIFY(test.station.data_log == nullptr);
    test.run(3);
    QCOMPARE(test.bench.instrument->state, Off);
    QCOMPARE(test.bench.csv(), csv);
    QCOMPARE(test.bench.txt(), txt);
    QCOMPARE(test.bench.answers.seen.size(), size_t(asks ? 2 : 0));
    for (const SeenBox& box : test.bench.answers.seen) {
        QCOMPARE(box.caption, QString("Are you sure?"));
        QCOMPARE(box.text, QString("This will abort the test in progress."));
        QCOMPARE(box.icon, QMessageBox::Question);
        QCOMPARE(int(box.buttons), int(QMessageBox::Ok | QMessageBox::Cancel));
        QCOMPARE(box.default_button, QMessageBox::Cancel);
        QVERIFY(!box.has_parent);
    }
}

void WholeOperatorTest::a_new_test_follows_on_the_same_station()
{
    WholeTest test;
    begin(test);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_IR_RECOVERY));
    test.bench.answers.click(QMessageBox::Ok);
    test.press("pbNewTest");
    QVERIFY(!start_skip(test)->isEnabled());
    test.run(2);
    test.start("Pack A", "1043");
    // New Test has ticked the prompt along with the full charge detection.
    QVERIFY(test.run_to(PHASE_READY_FOR_DISCHARGE));
    test.press("pbStartSkip");
    test.run(3);
    test.press("pbStartSkip");
    test.run(2);
    test.press("pbStartSkip");
    QCOMPARE(test.difference_from("second_test"), QString());
    QVERIFY(test.bench.file("Pack A_1042.csv").startsWith("Kestrometer Log\n"));
}

void WholeOperatorTest::cycles_are_added_in_the_final_charge()
{
    WholeTest test;
    test.station.measure_internal_resistance = false;
    begin(test);
    test.press("pbStartSkip");
    test.press("pbStartSkip");
    test.run(3);
    cycles_box(test)->setValue(2);
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    test.run(3);
    test.press("pbStartSkip");
    test.run(3);
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_FINAL_CHARGE);
    test.run(2);
    // A decrease is a change as well.
    cycles_box(test)->setValue(1);
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    test.run(2);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("cycles_added_in_final_charge"), QString());
}

void WholeOperatorTest::cycles_are_added_after_done()
{
    WholeTest test;
    test.station.measure_internal_resistance = false;
    begin(test);
    test.press("pbStartSkip");
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_DONE));
    test.run(3);
    cycles_box(test)->setValue(2);
    QCOMPARE(test.station.phase, PHASE_DONE);
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_CHARGING);
    test.run(3);
    test.press("pbStartSkip");
    QVERIFY(test.run_to(PHASE_DONE));
    QCOMPARE(test.difference_from("cycles_added_after_done"), QString());
    QVERIFY(test.bench.answers.seen.empty());
}

void WholeOperatorTest::a_station_closed_in_mid_test_switches_off()
{
    WholeTest test;
    begin(test);
    test.run(1);
    test.press("pbStartSkip");
    test.run(2);
    const QByteArray csv = test.bench.csv();
    test.bench.station.reset();
    QCOMPARE(test.bench.wire.commands(), QByteArray("O"));
    QCOMPARE(test.bench.file("Pack A_1042.csv"), csv);
}

KEST_TEST(WholeOperatorTest)
#include "tst_whole_operator.moc"
