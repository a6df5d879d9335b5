#include "report/error_bars.h"
#include "support/test_program.h"

#include "charts/series.h"

#include <QtTest>

#include <limits>

/** The uncertainty of the resistance readings, as a scale and as lines. */
class ErrorBarsTest : public QObject
{
    Q_OBJECT

private slots:
    void a_bar_reaches_to_both_sides_of_its_reading();
    void the_highest_end_of_all_cycles_counts();
    void nothing_reaches_below_zero();
    void a_reading_without_a_current_of_its_own_has_no_bar_data();
    void a_reading_without_a_current_of_its_own_has_no_bar();
    void a_reading_before_the_first_current_takes_that_one();
    void without_a_current_the_bar_has_no_end();
    void what_is_not_a_number_leaves_the_scale_alone();
    void cycles_without_readings_have_no_bars();
    void ends_are_truncated_to_pixels();
};

namespace
{
/** One cycle's curves, for a chart of 100 pixels to the amp-hour and 2 to the milliohm. */
struct Bench
{
    Bench()
    {
        x_axis.range.include(0.0);
        x_axis.range.include(10.0);
        x_axis.origin = 50;
        x_axis.length = 1000;
        y_axis.range.include(0.0);
        y_axis.range.include(200.0);
        y_axis.origin = 700;
        y_axis.length = 400;
    }

    QList<ResistanceReadings> cycles() const
    {
        return {{&resistance, &current}};
    }

    QList<QLine> bars() const
    {
        return error_bars(cycles(), x_axis, y_axis);
    }

    Series resistance;
    Series current;
    Axis x_axis{BOTTOM};
    Axis y_axis{LEFT};
};
}  // namespace

void ErrorBarsTest::a_bar_reaches_to_both_sides_of_its_reading()
{
    Bench bench;
    bench.current.add(1.0, 3.0);
    bench.current.add(2.0, 5.0);
    bench.resistance.add(2.0, 60.0);
    QCOMPARE(highest_error_bar_end(bench.cycles()), 90.0);
    QCOMPARE(bench.bars(), QList<QLine>{QLine(250, 700 - 180, 250, 700 - 60)});
}

void ErrorBarsTest::the_highest_end_of_all_cycles_counts()
{
    Bench low;
    low.current.add(1.0, 1.0);
    low.resistance.add(1.0, 20.0);
    Bench high;
    high.current.add(1.0, 10.0);
    high.current.add(2.0, 10.0);
    high.resistance.add(1.0, 160.0);
    high.resistance.add(2.0, 140.0);
    QCOMPARE(highest_error_bar_end(low.cycles()), 170.0);
    QCOMPARE(highest_error_bar_end(low.cycles() + high.cycles()), 175.0);
    QCOMPARE(highest_error_bar_end(high.cycles() + low.cycles()), 175.0);
    QCOMPARE(error_bars(low.cycles() + high.cycles(), low.x_axis, low.y_axis).size(), 3);
}

void ErrorBarsTest::nothing_reaches_below_zero()
{
    Bench bench;
    bench.current.add(1.0, 10.0);
    bench.resistance.add(1.0, -500.0);
    QCOMPARE(highest_error_bar_end(bench.cycles()), 0.0);
    QCOMPARE(highest_error_bar_end({}), 0.0);
}

void ErrorBarsTest::a_reading_without_a_current_of_its_own_has_no_bar_data()
{
    QTest::addColumn<double>("amp_hours");
    QTest::newRow("between two") << 1.5;
    QTest::newRow("ever so slightly off") << 2.0 + std::numeric_limits<double>::epsilon() * 2.0;
    QTest::newRow("behind the last") << 3.5;
}

void ErrorBarsTest::a_reading_without_a_current_of_its_own_has_no_bar()
{
    QFETCH(double, amp_hours);
    Bench bench;
    for (const double x : {1.0, 2.0, 3.0})
        bench.current.add(x, 5.0);
    bench.resistance.add(amp_hours, 60.0);
    QCOMPARE(highest_error_bar_end(bench.cycles()), 0.0);
    QCOMPARE(bench.bars(), QList<QLine>());
}

void ErrorBarsTest::a_reading_before_the_first_current_takes_that_one()
{
    Bench bench;
    bench.current.add(1.0, 5.0);
    bench.current.add(2.0, 50.0);
    bench.resistance.add(0.5, 60.0);
    QCOMPARE(highest_error_bar_end(bench.cycles()), 90.0);
    QCOMPARE(bench.bars(), QList<QLine>{QLine(100, 520, 100, 640)});
}

void ErrorBarsTest::without_a_current_the_bar_has_no_end()
{
    Bench bench;
    bench.current.add(1.0, 0.0);
    bench.resistance.add(1.0, 60.0);
    QCOMPARE(highest_error_bar_end(bench.cycles()), qInf());
    const int far_away = std::numeric_limits<int>::max();
    QCOMPARE(bench.bars(), QList<QLine>{QLine(150, -far_away - 1, 150, far_away)});
}

void ErrorBarsTest::what_is_not_a_number_leaves_the_scale_alone()
{
    Bench bench;
    for (const double x : {1.0, 2.0, 3.0})
        bench.current.add(x, x == 2.0 ? qQNaN() : 5.0);
    for (const double x : {1.0, 2.0, 3.0})
        bench.resistance.add(x, x == 3.0 ? qQNaN() : 60.0);
    QCOMPARE(highest_error_bar_end(bench.cycles()), 90.0);
    QCOMPARE(bench.bars().size(), 3);
}

void ErrorBarsTest::cycles_without_readings_have_no_bars()
{
    Bench bench;
    QCOMPARE(bench.bars(), QList<QLine>());
    bench.resistance.add(1.0, 60.0);
    QCOMPARE(bench.bars(), QList<QLine>());
    QCOMPARE(highest_error_bar_end(bench.cycles()), 0.0);
}

void ErrorBarsTest::ends_are_truncated_to_pixels()
{
    Bench bench;
    bench.current.add(1.239, 4.0);
    bench.resistance.add(1.239, 50.3);
    // 123.9 to the right; 175.6 and 25.6 pixels above the origin.
    QCOMPARE(bench.bars(), QList<QLine>{QLine(173, 524, 173, 674)});
}

KEST_GUILESS_TEST(ErrorBarsTest)
#include "tst_error_bars.moc"
