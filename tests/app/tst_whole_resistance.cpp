#include "support/test_program.h"
#include "support/whole_test.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QPushButton>
#include <QtTest>

/** Discharges with their resistance tests, from the first cutoff to Done. */
class WholeResistanceTest : public QObject
{
    Q_OBJECT

private slots:
    void good_tests_and_one_without_a_rise();
    void a_late_letter_prolongs_each_test_by_frozen_rows();
    void a_botched_test_is_repeated_until_it_is_good();
    void current_that_stays_holds_the_test_until_it_goes();
    void an_instrument_that_never_reports_off_holds_the_test_until_new_test();
};

namespace
{
/** A test that has just begun its first discharge, with a resistance test every 0.01 Ah. */
void begin_discharge(WholeTest& test)
{
    test.station.max_charge_time = 60;
    test.station.internal_resistance_test_interval_ah = 0.01;
    test.start();
    test.run(1);
    test.press("pbStartSkip");
}

void finish(WholeTest& test)
{
    QVERIFY(test.run_to(PHASE_FINAL_CHARGE));
    test.run(2);
    test.press("pbStartSkip");
    QCOMPARE(test.station.phase, PHASE_DONE);
}
}  // namespace

void WholeResistanceTest::good_tests_and_one_without_a_rise()
{
    WholeTest test;
    begin_discharge(test);
    QVERIFY(test.run_to(PHASE_IR_RECOVERY));
    QVERIFY(test.run_to(PHASE_IR_TEST));
    test.link.set_fault("voltage-after-off 0 1");
    finish(test);
    QCOMPARE(test.difference_from("resistance_good"), QString());
}

void WholeResistanceTest::a_late_letter_prolongs_each_test_by_frozen_rows()
{
    WholeTest test;
    test.link.simulated.letter_delay = 2;
    begin_discharge(test);
    finish(test);
    QCOMPARE(test.difference_from("resistance_late_letter"), QString());
}

void WholeResistanceTest::a_botched_test_is_repeated_until_it_is_good()
{
    WholeTest test;
    begin_discharge(test);
    QVERIFY(test.run_to(PHASE_IR_TEST));
    test.link.set_fault("voltage-after-off -0.2 2");
    finish(test);
    QCOMPARE(test.difference_from("resistance_botched"), QString());
}

void WholeResistanceTest::current_that_stays_holds_the_test_until_it_goes()
{
    WholeTest test;
    begin_discharge(test);
    QVERIFY(test.run_to(PHASE_IR_TEST));
    test.link.set_fault("current-after-off 0.3 forever");
    test.run(20);
    QCOMPARE(test.station.phase, PHASE_IR_TEST);
    QVERIFY(!test.bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    test.link.set_fault("clear");
    finish(test);
    QCOMPARE(test.difference_from("resistance_current_stays"), QString());
}

void WholeResistanceTest::an_instrument_that_never_reports_off_holds_the_test_until_new_test()
{
    WholeTest test;
    begin_discharge(test);
    test.run(1);
    test.link.set_fault("ignore-commands forever");
    QVERIFY(test.run_to(PHASE_IR_TEST));
    test.run(10);
    QCOMPARE(test.station.phase, PHASE_IR_TEST);
    QVERIFY(!test.bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    QVERIFY(test.bench.instrument->get_stuck());
    test.bench.answers.click(QMessageBox::Ok);
    test.press("pbNewTest");
    QCOMPARE(test.station.phase, PHASE_IDLE);
    QCOMPARE(test.difference_from("resistance_never_off"), QString());
}

KEST_TEST(WholeResistanceTest)
#include "tst_whole_resistance.moc"
