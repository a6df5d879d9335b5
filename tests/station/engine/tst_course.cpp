#include "station/test_station.h"
#include "support/golden_file.h"
#include "support/station_bench.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include "device/kestrometer.h"

#include <QCheckBox>
#include <QLabel>
#include <QSpinBox>
#include <QtTest>

/** Whole tests: every command that the instrument gets, every phase on the way, both logs. */
class CourseTest : public QObject
{
    Q_OBJECT

private slots:
    void one_cycle();
    void three_cycles_with_prompts();
    void full_charge_detection_and_resistance();
    void more_cycles_in_the_final_charge_and_after_it();
    void a_disobedient_instrument_is_told_again_data();
    void a_disobedient_instrument_is_told_again();
    void a_missing_load_is_shown_data();
    void a_missing_load_is_shown();
};

namespace
{
/** Empty if both logs are those in tests/data/courses; else what differs. */
QString difference_from(const QString& name, StationBench& bench)
{
    return difference_from_golden("courses/" + name + ".csv", bench.csv()) +
           difference_from_golden("courses/" + name + ".txt", bench.txt());
}

void charge_until_out_of_time(StationBench& bench)
{
    bench.receive("41.00", "3.0", "C");
    bench.receive_after(21600.0, "41.50", "1.0", "C");
}

void discharge_down(StationBench& bench)
{
    bench.receive("40.00", "10.0", "D");
    bench.receive("18.50", "10.0", "D");
}

void finish(StationBench& bench)
{
    bench.receive("30.00", "3.0", "C");
    bench.receive_after(301.0, "41.00", "1.0", "C");
    bench.receive("41.00", "1.0", "C");
    bench.receive("41.00", "0.0", "O");
}
}  // namespace

void CourseTest::one_cycle()
{
    StationBench bench;
    bench.receive("40.00", "0.0", "O");
    bench.start();
    charge_until_out_of_time(bench);
    discharge_down(bench);
    finish(bench);
    QCOMPARE(bench.station->phase, PHASE_DONE);
    QCOMPARE(bench.wire.commands(), QByteArray("CDCO"));
    QCOMPARE(difference_from("one_cycle", bench), QString());
}

void CourseTest::three_cycles_with_prompts()
{
    StationBench bench;
    bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(3);
    bench.widget<QCheckBox>("cbPromptToDischarge")->click();
    bench.receive("40.00", "0.0", "O");
    bench.start();
    charge_until_out_of_time(bench);
    bench.receive("41.50", "0.0", "O");
    QCOMPARE(bench.text("laPhase"), QString("Ready for 0th Discharge"));
    bench.press("pbStartSkip");
    discharge_down(bench);
    charge_until_out_of_time(bench);
    discharge_down(bench);
    charge_until_out_of_time(bench);
    bench.receive("41.50", "0.0", "O");
    bench.press("pbStartSkip");
    discharge_down(bench);
    finish(bench);
    QCOMPARE(bench.station->phase, PHASE_DONE);
    QCOMPARE(bench.wire.commands(), QByteArray("CODCDCODCO"));
    QCOMPARE(bench.station->get_cycle_number(), 3);
    QCOMPARE(difference_from("three_cycles", bench), QString());
}

void CourseTest::full_charge_detection_and_resistance()
{
    StationBench bench;
    bring_to(bench, PHASE_FULL_CHARGE_TEST);
    bench.receive("41.80", "0.0", "O");
    bench.receive("41.60", "1.0", "C");
    bench.receive_after(301.0, "41.60", "0.5", "C");
    bench.receive("41.60", "0.5", "C");
    bench.receive("41.55", "0.0", "O");
    bench.receive_after(180.0, "40.00", "10.0", "D");
    bench.receive("40.50", "0.0", "O");
    bench.receive("39.90", "10.0", "D");
    bench.receive("18.50", "10.0", "D");
    finish(bench);
    QCOMPARE(bench.station->phase, PHASE_DONE);
    // Twice in a row: every second line in a row that shows another state than the one commanded
    // repeats the command, also one that was given on this very line.
    QCOMPARE(bench.wire.commands(), QByteArray("COCCOODOODCO"));
    QCOMPARE(difference_from("full_charge", bench), QString());
}

void CourseTest::more_cycles_in_the_final_charge_and_after_it()
{
    StationBench bench;
    bring_to(bench, PHASE_FINAL_CHARGE);
    bench.widget<QSpinBox>("sbNumberOfCycles")->stepUp();
    bench.receive_after(21601.0, "41.50", "1.0", "C");
    discharge_down(bench);
    finish(bench);
    QCOMPARE(bench.station->phase, PHASE_DONE);
    bench.widget<QSpinBox>("sbNumberOfCycles")->stepUp();
    bench.press("pbStartSkip");
    charge_until_out_of_time(bench);
    discharge_down(bench);
    finish(bench);
    QCOMPARE(bench.wire.commands(), QByteArray("CDCDCOCDCO"));
    QCOMPARE(bench.station->get_cycle_number(), 3);
    QCOMPARE(difference_from("more_cycles", bench), QString());
}

void CourseTest::a_disobedient_instrument_is_told_again_data()
{
    QTest::addColumn<int>("phase");
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<QByteArray>("command");
    QTest::newRow("charging") << 1 << QByteArray("O") << QByteArray("C");
    QTest::newRow("charging on") << 2 << QByteArray("D") << QByteArray("C");
    QTest::newRow("ready") << 4 << QByteArray("C") << QByteArray("O");
    QTest::newRow("discharging") << 5 << QByteArray("O") << QByteArray("D");
    QTest::newRow("discharging, no known letter") << 5 << QByteArray("d") << QByteArray("D");
    QTest::newRow("final charge") << 8 << QByteArray("O") << QByteArray("C");
    QTest::newRow("done") << 10 << QByteArray("C") << QByteArray("O");
}

void CourseTest::a_disobedient_instrument_is_told_again()
{
    QFETCH(int, phase);
    QFETCH(QByteArray, state);
    QFETCH(QByteArray, command);
    StationBench bench;
    bring_to(bench, Phase(phase));
    bench.instrument->stuck_count = 0;
    bench.wire.commands();
    for (int line = 1; line <= 4; ++line)
        bench.receive("40.00", "1.0", state.constData());
    bench.station->slot_blink(false);
    QVERIFY(!bench.widget<QLabel>("laKestrometerIsStuck")->isVisible());
    bench.receive("40.00", "1.0", state.constData());
    bench.station->slot_blink(true);
    QVERIFY(bench.widget<QLabel>("laKestrometerIsStuck")->isVisible());
    QCOMPARE(bench.wire.commands(), command + command);
    // The phase goes on by its own clock and voltage.
    QCOMPARE(bench.station->phase, Phase(phase));
    bench.receive("40.00", "1.0", phase == PHASE_DISCHARGING ? "D" : command.constData());
    bench.station->slot_blink(false);
    QVERIFY(!bench.widget<QLabel>("laKestrometerIsStuck")->isVisible());
}

void CourseTest::a_missing_load_is_shown_data()
{
    QTest::addColumn<QByteArray>("current");
    QTest::addColumn<bool>("shown");
    QTest::newRow("none") << QByteArray("0.0") << true;
    QTest::newRow("just below") << QByteArray("0.0999") << true;
    QTest::newRow("exactly the least") << QByteArray("0.1") << false;
    QTest::newRow("plenty") << QByteArray("10.0") << false;
    QTest::newRow("backwards") << QByteArray("-1.0") << true;
}

void CourseTest::a_missing_load_is_shown()
{
    QFETCH(QByteArray, current);
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    for (int line = 0; line < 10; ++line)
        bench.receive("40.00", current.constData(), "D");
    bench.station->slot_blink(false);
    QTEST(bench.widget<QLabel>("laNotDischarging")->isVisible(), "shown");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    bench.receive("18.00", current.constData(), "D");
    QCOMPARE(bench.station->phase, PHASE_FINAL_CHARGE);
    bench.station->slot_blink(true);
    QVERIFY(!bench.widget<QLabel>("laNotDischarging")->isVisible());
}

KEST_TEST(CourseTest)
#include "tst_course.moc"
