#include "station/test_cycle.h"
#include "support/test_program.h"
#include "support/test_road.h"

#include <QtTest>

class TestCycleTest : public QObject
{
    Q_OBJECT

private slots:
    void a_new_cycle_is_empty_and_ticked();
    void the_mean_resistance_has_no_decimals_data();
    void the_mean_resistance_has_no_decimals();
    void a_resistance_is_shown_in_whole_milliohms();
    void too_few_samples_have_no_voltage_at_30_percent();
    void the_voltage_at_30_percent_stands_at_two_thirds_of_the_discharge_data();
    void the_voltage_at_30_percent_stands_at_two_thirds_of_the_discharge();
};

namespace
{
/** One sample every `step` amp-hours, the first at 0; each shows its own number as voltage. */
void fill(TestCycle& cycle, int samples, double step)
{
    for (int sample = 0; sample < samples; ++sample)
        cycle.voltage_vs_amphours.add(sample * step, sample);
    cycle.amp_hours = (samples - 1) * step;
}
}  // namespace

void TestCycleTest::a_new_cycle_is_empty_and_ticked()
{
    const TestCycle cycle;
    QVERIFY(cycle.start_time.isNull());
    QCOMPARE(cycle.amp_hours, 0.0);
    QCOMPARE(cycle.watt_hours, 0.0);
    QVERIFY(cycle.voltage_vs_amphours.points.isEmpty());
    QVERIFY(cycle.current_vs_amphours.points.isEmpty());
    QVERIFY(cycle.internal_resistance.points.isEmpty());
    QVERIFY(cycle.checkbox.isChecked());
}

void TestCycleTest::the_mean_resistance_has_no_decimals_data()
{
    QTest::addColumn<QList<double>>("milliohms");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << QList<double>() << in_milliohms("?");
    QTest::newRow("zero is a value") << QList<double>{0.0} << in_milliohms("0");
    QTest::newRow("one") << QList<double>{14.2} << in_milliohms("14");
    QTest::newRow("mean of several") << QList<double>{10.0, 11.0, 15.0} << in_milliohms("12");
    QTest::newRow("a half goes up") << QList<double>{123.0, 124.0} << in_milliohms("124");
    add_row("a half goes up to an odd one", QList<double>{122.0, 123.0}, in_milliohms("123"));
    QTest::newRow("far beyond a pack's") << QList<double>{1e9} << in_milliohms("1000000000");
}

void TestCycleTest::the_mean_resistance_has_no_decimals()
{
    QFETCH(QList<double>, milliohms);
    TestCycle cycle;
    for (const double value : milliohms)
        cycle.internal_resistance.add(cycle.internal_resistance.points.size() * 0.5, value);
    QTEST(cycle.avg_internal_resistance_string(), "text");
}

void TestCycleTest::a_resistance_is_shown_in_whole_milliohms()
{
    QCOMPARE(milliohms_string(true, 123.4), in_milliohms("123"));
    QCOMPARE(milliohms_string(false, 123.4), in_milliohms("?"));
}

void TestCycleTest::too_few_samples_have_no_voltage_at_30_percent()
{
    TestCycle cycle;
    fill(cycle, 599, 0.5);
    float voltage = -1.0F;
    QVERIFY(!cycle.calc_30_percent_charge_voltage(voltage));
    QCOMPARE(voltage, -1.0F);
}

void TestCycleTest::the_voltage_at_30_percent_stands_at_two_thirds_of_the_discharge_data()
{
    QTest::addColumn<int>("samples");
    QTest::addColumn<double>("step");
    QTest::addColumn<float>("voltage");
    QTest::newRow("a sample stands there") << 601 << 0.5 << 400.0F;
    QTest::newRow("between two the one below counts") << 600 << 0.5 << 399.0F;
    QTest::newRow("nothing delivered: one of the many at 0") << 600 << 0.0 << 299.0F;
}

void TestCycleTest::the_voltage_at_30_percent_stands_at_two_thirds_of_the_discharge()
{
    QFETCH(int, samples);
    QFETCH(double, step);
    TestCycle cycle;
    fill(cycle, samples, step);
    float voltage = -1.0F;
    QVERIFY(cycle.calc_30_percent_charge_voltage(voltage));
    QTEST(voltage, "voltage");
}

KEST_TEST(TestCycleTest)
#include "tst_test_cycle.moc"
