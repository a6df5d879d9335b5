#include "resistance_steps.h"
#include "support/test_program.h"

#include "device/kestrometer.h"

#include <QPushButton>
#include <QtTest>

#include <cmath>

/** The load's short absences, from which the internal resistance follows. */
class ResistanceTest : public QObject
{
    Q_OBJECT

private slots:
    void a_good_test_gives_a_point_and_a_row();
    void the_point_stands_at_the_end_of_the_wait();
    void readings_are_frozen_while_the_load_is_away();
    void the_line_that_ends_the_recovery_is_live();
    void no_rise_is_a_resistance_of_zero();
    void the_least_resistance_is_a_row_of_zeros();
    void a_fall_is_botched_and_tried_again();
    void the_numbers_of_a_botched_test_are_short_data();
    void the_numbers_of_a_botched_test_are_short();
    void a_test_without_current_has_no_finite_result_data();
    void a_test_without_current_has_no_finite_result();
    void a_load_that_stays_holds_the_test_without_end();
    void a_load_that_stays_away_holds_the_recovery_without_end();
};

void ResistanceTest::a_good_test_gives_a_point_and_a_row()
{
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.receive_after(180.0, "40.00", "10.0", "D");
    QCOMPARE(bench.station->ir_test_voltage, 40.0);
    QCOMPARE(bench.station->ir_test_current, 10.0);
    bench.receive("40.90", "3.0", "D");
    bench.receive("40.14", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_IR_RECOVERY);
    QCOMPARE(points_of(bench).size(), 1);
    QVERIFY(std::abs(points_of(bench).first().y() - 14.0) < 1e-6);
    QCOMPARE(bench.station->next_ir_check_ah, 1.0);
    bench.receive("40.00", "10.0", "D");
    // Only the row of the line that completed the test carries the ohms.
    QCOMPARE(last_rows(bench).mid(1),
             (QStringList{"181.0,0.503,40.00,10.00", "182.0,0.506,40.00,10.00",
                          "183.0,0.508,40.00,10.00,0.014", "184.0,0.511,40.00,10.00"}));
    QCOMPARE(events(bench).mid(2),
             (QStringList{"Switching to phase IR Test because amp_hours (0.503) >= "
                          "next_ir_check_ah (0.5)",
                          "Switching to phase Recovering from IR Test because Completed IR Test, "
                          "IR = 14.000",
                          "Switching to phase Discharging because Finished recovering from IR "
                          "test"}));
    QCOMPARE(bench.text("laIntResistance"), QString("14 m") + QChar(0x2126));
}

void ResistanceTest::the_point_stands_at_the_end_of_the_wait()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_TEST);
    bench.station->current_cycle->amp_hours = 0.5;
    bench.receive_after(360.0, "41.00", "10.0", "D");
    bench.receive_after(3600.0, "41.00", "0.0", "O");
    // The first wait counts at the old rate; the line that completes is integrated afterwards.
    QCOMPARE(points_of(bench), QList<QPointF>{QPointF(1.5, 100.0)});
    QCOMPARE(bench.station->current_cycle->amp_hours, 11.5);
}

void ResistanceTest::readings_are_frozen_while_the_load_is_away()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_TEST);
    const Kestrometer& instrument = *bench.instrument;
    TestCycle& cycle = *bench.station->current_cycle;
    cycle.amp_hours = 0.0;
    cycle.watt_hours = 0.0;
    const int samples = cycle.voltage_vs_amphours.points.size();
    const char* const lines[][3] = {
        {"41.50", "2.0", "D"}, {"42.00", "0.0", "O"}, {"42.10", "0.0", "O"}, {"41.00", "9.0", "D"}};
    for (const auto& line : lines) {
        bench.receive_after(360.0, line[0], line[1], line[2]);
        QCOMPARE(instrument.voltage, 40.0);
        QCOMPARE(instrument.valid_voltage, 40.0);
        QCOMPARE(instrument.current, 10.0);
        QCOMPARE(instrument.valid_current, 10.0);
        QCOMPARE(bench.text("laVoltage"), QString("40.0 V"));
        QCOMPARE(bench.text("laCurrent"), QString("10.00 A"));
    }
    QCOMPARE(bench.station->phase, PHASE_IR_RECOVERY);
    QCOMPARE(cycle.amp_hours, 4.0);
    QCOMPARE(cycle.watt_hours, 160.0);
    QCOMPARE(cycle.voltage_vs_amphours.points.mid(samples),
             (QList<QPointF>{{1.0, 40.0}, {2.0, 40.0}, {3.0, 40.0}, {4.0, 40.0}}));
    QCOMPARE(cycle.current_vs_amphours.points.mid(samples),
             (QList<QPointF>{{1.0, 10.0}, {2.0, 10.0}, {3.0, 10.0}, {4.0, 10.0}}));
    const QStringList rows = last_rows(bench);
    QCOMPARE(rows.mid(rows.size() - 4),
             (QStringList{"541.0,1.000,40.00,10.00", "901.0,2.000,40.00,10.00,0.200",
                          "1261.0,3.000,40.00,10.00", "1621.0,4.000,40.00,10.00"}));
}

void ResistanceTest::the_line_that_ends_the_recovery_is_live()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_RECOVERY);
    TestCycle& cycle = *bench.station->current_cycle;
    cycle.amp_hours = 0.0;
    cycle.watt_hours = 0.0;
    bench.receive_after(360.0, "38.00", "5.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QCOMPARE(cycle.amp_hours, 0.5);
    QCOMPARE(cycle.watt_hours, 19.0);
    QCOMPARE(last_rows(bench).last(), QString("542.0,0.500,38.00,5.00"));
    QCOMPARE(bench.text("laVoltage"), QString("38.0 V"));
}

void ResistanceTest::no_rise_is_a_resistance_of_zero()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_TEST);
    bench.receive("40.00", "0.0", "O");
    QCOMPARE(points_of(bench).size(), 1);
    QCOMPARE(points_of(bench).first().y(), 0.0);
    QCOMPARE(bench.station->next_ir_check_ah, 1.0);
    QCOMPARE(events(bench).last(),
             QString("Switching to phase Recovering from IR Test because Completed IR Test, "
                     "IR = 0.000"));
    // A row of four columns: nothing tells it from the rows around it.
    QCOMPARE(last_rows(bench).last(), QString("182.0,0.506,40.00,10.00"));
}

void ResistanceTest::the_least_resistance_is_a_row_of_zeros()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_TEST);
    bench.receive("40.004", "0.0", "O");
    QCOMPARE(last_rows(bench).last(), QString("182.0,0.506,40.00,10.00,0.000"));
}

void ResistanceTest::a_fall_is_botched_and_tried_again()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_TEST);
    for (int attempt = 1; attempt <= 3; ++attempt) {
        bench.receive("39.50", "0.0", "O");
        QCOMPARE(bench.station->phase, PHASE_IR_RECOVERY);
        QVERIFY(points_of(bench).isEmpty());
        QCOMPARE(bench.station->next_ir_check_ah, 0.5);
        QVERIFY(last_rows(bench).last().endsWith(",40.00,10.00,-0.050"));
        // Recovered, and the test is due again on the same line.
        bench.receive("40.00", "10.0", "D");
        QCOMPARE(bench.station->phase, PHASE_IR_TEST);
        QCOMPARE(tests_begun(bench), attempt + 1);
    }
    QCOMPARE(events(bench).filter("botched").size(), 3);
    complete_a_test(bench);
    QCOMPARE(points_of(bench).size(), 1);
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
    QCOMPARE(bench.station->next_ir_check_ah, 1.0);
}

void ResistanceTest::the_numbers_of_a_botched_test_are_short_data()
{
    QTest::addColumn<QByteArray>("under_load");
    QTest::addColumn<QByteArray>("current");
    QTest::addColumn<QByteArray>("without_load");
    QTest::addColumn<QStringList>("texts");
    add_row("no trailing zeros", QByteArray("40.50"), QByteArray("10.0"), QByteArray("40.00"),
            QStringList{"botched IR test, open circuit voltage = 40 V, closed circuit voltage = "
                        "40.5 V, I = 10 A, ir = -50 mOhm",
                        "Switching to phase Recovering from IR Test because Completed IR Test, "
                        "IR = -50.000"});
    add_row("six digits", QByteArray("40.1234567"), QByteArray("3"), QByteArray("39.7654321"),
            QStringList{"botched IR test, open circuit voltage = 39.7654 V, closed circuit voltage "
                        "= 40.1235 V, I = 3 A, ir = -119.342 mOhm",
                        "Switching to phase Recovering from IR Test because Completed IR Test, "
                        "IR = -119.342"});
    add_row("a large one", QByteArray("40.00"), QByteArray("0.00001"), QByteArray("20.00"),
            QStringList{"botched IR test, open circuit voltage = 20 V, closed circuit voltage = "
                        "40 V, I = 1e-05 A, ir = -2e+09 mOhm",
                        "Switching to phase Recovering from IR Test because Completed IR Test, "
                        "IR = -2000000000.000"});
}

void ResistanceTest::the_numbers_of_a_botched_test_are_short()
{
    QFETCH(QByteArray, under_load);
    QFETCH(QByteArray, current);
    QFETCH(QByteArray, without_load);
    QFETCH(QStringList, texts);
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->next_ir_check_ah = 0.0;
    bench.receive(under_load.constData(), current.constData(), "D");
    const int before = events(bench).size();
    bench.receive(without_load.constData(), "0.0", "O");
    QCOMPARE(events(bench).mid(before), texts);
}

void ResistanceTest::a_test_without_current_has_no_finite_result_data()
{
    QTest::addColumn<QByteArray>("without_load");
    QTest::addColumn<QString>("ir");
    QTest::addColumn<bool>("good");
    QTest::newRow("a rise") << QByteArray("41.00") << "inf" << true;
    QTest::newRow("no rise") << QByteArray("40.00") << "nan" << true;
    QTest::newRow("a fall") << QByteArray("39.00") << "-inf" << false;
}

void ResistanceTest::a_test_without_current_has_no_finite_result()
{
    QFETCH(QByteArray, without_load);
    QFETCH(QString, ir);
    QFETCH(bool, good);
    StationBench bench;
    bring_to(bench, PHASE_DISCHARGING);
    bench.station->next_ir_check_ah = 0.0;
    bench.receive("40.00", "0.0", "D");
    QCOMPARE(bench.station->phase, PHASE_IR_TEST);
    const int rows = last_rows(bench).size();
    bench.receive(without_load.constData(), "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_IR_RECOVERY);
    QCOMPARE(points_of(bench).size(), good ? 1 : 0);
    QCOMPARE(bench.station->next_ir_check_ah, good ? 0.5 : 0.0);
    QCOMPARE(events(bench).last(),
             "Switching to phase Recovering from IR Test because Completed IR Test, IR = " + ir);
    // The frozen current is zero: no row.
    QCOMPARE(last_rows(bench).size(), rows);
}

void ResistanceTest::a_load_that_stays_holds_the_test_without_end()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_TEST);
    bench.wire.commands();
    bench.station->max_charge_time = 0;
    const double amp_hours = bench.station->current_cycle->amp_hours;
    for (int line = 0; line < 10; ++line)
        bench.receive_after(3600.0, "1.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_IR_TEST);
    QVERIFY(bench.instrument->get_stuck());
    QCOMPARE(bench.wire.commands(), QByteArray("OOOOO"));
    QCOMPARE(bench.station->current_cycle->amp_hours, amp_hours + 100.0);
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());

    bench.answers.click(QMessageBox::Ok);
    bench.press("pbNewTest");
    QCOMPARE(bench.station->phase, PHASE_IDLE);
}

void ResistanceTest::a_load_that_stays_away_holds_the_recovery_without_end()
{
    StationBench bench;
    bring_to(bench, PHASE_IR_RECOVERY);
    bench.receive("41.00", "0.0", "O");
    bench.wire.commands();
    for (int line = 0; line < 10; ++line)
        bench.receive("1.00", "0.0", "O");
    QCOMPARE(bench.station->phase, PHASE_IR_RECOVERY);
    QCOMPARE(bench.wire.commands(), QByteArray("DDDDD"));
    QVERIFY(!bench.widget<QPushButton>("pbStartSkip")->isEnabled());
    bench.receive("40.00", "10.0", "D");
    QCOMPARE(bench.station->phase, PHASE_DISCHARGING);
}

KEST_TEST(ResistanceTest)
#include "tst_resistance.moc"
