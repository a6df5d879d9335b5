#include "charts/closest_point.h"
#include "support/test_program.h"

#include "charts/line_chart.h"
#include "charts/series.h"

#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace
{
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr int MIN_PIXEL = std::numeric_limits<int>::min();
constexpr int MAX_PIXEL = std::numeric_limits<int>::max();

/** Axes of one pixel per unit, both from 0, the vertical one falling from pixel 1000. */
struct Bench
{
    Bench()
    {
        for (Axis* axis : {&chart.bottom_axis, &chart.left_axis}) {
            axis->range.min = 0.0;
            axis->range.max = 1000.0;
            axis->length = 1000;
        }
        chart.left_axis.origin = 1000;
    }

    Series& add(const QList<QPointF>& points)
    {
        owned.push_back(std::make_unique<Series>());
        Series& series = *owned.back();
        series.set_axes(&chart.bottom_axis, &chart.left_axis);
        for (const QPointF& point : points)
            series.add(point.x(), point.y());
        list.append(&series);
        return series;
    }

    ClosestPoint find(int x, int y) const
    {
        return find_closest_point(list, QPoint(x, y));
    }

    LineChart chart;
    std::vector<std::unique_ptr<Series>> owned;
    QList<Series*> list;
};

/** The rule, word by word: the first of the nearest, measured in single precision. */
ClosestPoint plainly_closest(const QList<Series*>& list, QPoint pixel)
{
    ClosestPoint closest;
    float nearest = std::numeric_limits<float>::infinity();
    for (const Series* series : list) {
        for (const QPointF& point : series->points) {
            const QPoint at = series->map_point(point);
            const qint64 dx = at.x() - qint64(pixel.x());
            const qint64 dy = at.y() - qint64(pixel.y());
            const auto distance = float(dx * dx + dy * dy);
            if (distance < nearest) {
                nearest = distance;
                closest = {series, point, at};
            }
        }
    }
    return closest;
}

bool lies_left_of(const QPointF& a, const QPointF& b)
{
    return a.x() < b.x();
}
}  // namespace

class ClosestPointTest : public QObject
{
    Q_OBJECT

private slots:
    void without_points_there_is_none();
    void the_nearest_point_is_found_with_its_pixel();
    void distance_counts_both_directions();
    void distance_is_measured_in_pixels_not_in_units();
    void of_equals_the_first_point_stands();
    void of_equals_the_first_curve_stands();
    void what_single_precision_cannot_tell_apart_is_equal();
    void points_outside_of_the_plot_area_count();
    void a_long_curve_is_searched_to_its_end();
    void unsorted_points_are_all_searched();
    void a_point_that_is_no_number_lies_far_away_data();
    void a_point_that_is_no_number_lies_far_away();
    void the_ends_of_the_pixel_range_are_still_measured();
    void a_chart_without_span_is_searched();
    void random_curves_give_what_the_plain_rule_gives_data();
    void random_curves_give_what_the_plain_rule_gives();
};

void ClosestPointTest::without_points_there_is_none()
{
    Bench bench;
    QVERIFY(bench.find(5, 5).series == nullptr);
    bench.add({});
    bench.add({});
    QVERIFY(bench.find(5, 5).series == nullptr);
}

void ClosestPointTest::the_nearest_point_is_found_with_its_pixel()
{
    Bench bench;
    bench.add({{100.0, 100.0}, {200.0, 100.0}});
    Series& second = bench.add({{100.0, 200.0}, {200.7, 200.7}, {300.0, 200.0}});
    const ClosestPoint closest = bench.find(210, 790);
    QCOMPARE(closest.series, &second);
    QCOMPARE(closest.point, QPointF(200.7, 200.7));
    QCOMPARE(closest.pixel, QPoint(200, 799));
}

void ClosestPointTest::distance_counts_both_directions()
{
    Bench bench;
    bench.add({{100.0, 500.0}, {130.0, 540.0}});
    // 50 pixels straight up against 30 to the side and 10 up.
    QCOMPARE(bench.find(100, 450).point, QPointF(130.0, 540.0));
    QCOMPARE(bench.find(100, 490).point, QPointF(100.0, 500.0));
}

void ClosestPointTest::distance_is_measured_in_pixels_not_in_units()
{
    Bench bench;
    bench.chart.bottom_axis.range.max = 10.0;
    // 1 unit of x is 100 pixels, 50 units of y are 50.
    bench.add({{1.0, 500.0}, {2.0, 550.0}});
    QCOMPARE(bench.find(200, 500).point, QPointF(2.0, 550.0));
}

void ClosestPointTest::of_equals_the_first_point_stands()
{
    Bench bench;
    bench.add({{90.0, 500.0}, {110.0, 500.0}, {100.0, 510.0}});
    QCOMPARE(bench.find(100, 500).point, QPointF(90.0, 500.0));
    // All on one pixel: the values still tell which it was.
    Bench crowded;
    crowded.add({{50.2, 500.0}, {50.4, 500.0}, {50.6, 500.0}});
    QCOMPARE(crowded.find(50, 500).point, QPointF(50.2, 500.0));
}

void ClosestPointTest::of_equals_the_first_curve_stands()
{
    Bench bench;
    Series& first = bench.add({{10.0, 10.0}, {50.0, 500.0}});
    Series& second = bench.add({{50.0, 500.0}, {10.0, 10.0}});
    QCOMPARE(bench.find(50, 500).series, &first);
    qSwap(bench.list[0], bench.list[1]);
    QCOMPARE(bench.find(50, 500).series, &second);
}

void ClosestPointTest::what_single_precision_cannot_tell_apart_is_equal()
{
    Bench bench;
    // 5000 * 5000 and 5000 * 5000 + 1: both need more digits than a float has.
    bench.add({{5000.0, 499.0}, {5000.0, 500.0}});
    const ClosestPoint closest = bench.find(0, 500);
    QCOMPARE(float(5000 * 5000 + 1), float(5000 * 5000));
    QCOMPARE(closest.point, QPointF(5000.0, 499.0));
}

void ClosestPointTest::points_outside_of_the_plot_area_count()
{
    Bench bench;
    bench.add({{-3000.0, 500.0}, {1400.0, 2500.0}});
    QCOMPARE(bench.find(900, 100).point, QPointF(1400.0, 2500.0));
    QCOMPARE(bench.find(900, 100).pixel, QPoint(1400, -1500));
}

void ClosestPointTest::a_long_curve_is_searched_to_its_end()
{
    for (const int count : {1, 2, 47, 48, 49, 95, 96, 97, 1000}) {
        Bench bench;
        Series& series = bench.add({});
        for (int i = 0; i < count; ++i)
            series.add(i, 500.0);
        for (const int wanted : {0, count / 2, count - 1})
            QCOMPARE(bench.find(wanted, 500).point.x(), double(wanted));
    }
}

void ClosestPointTest::unsorted_points_are_all_searched()
{
    Bench bench;
    bench.add({{900.0, 100.0}, {100.0, 500.0}, {500.0, 500.0}, {300.0, 500.0}, {0.0, 0.0}});
    QCOMPARE(bench.find(310, 500).point, QPointF(300.0, 500.0));
}

void ClosestPointTest::a_point_that_is_no_number_lies_far_away_data()
{
    QTest::addColumn<QPointF>("strange");
    QTest::addColumn<QPoint>("pixel");
    QTest::newRow("no x") << QPointF(NOT_A_NUMBER, 500.0) << QPoint(MIN_PIXEL, 500);
    QTest::newRow("no y") << QPointF(500.0, NOT_A_NUMBER) << QPoint(500, MIN_PIXEL);
    QTest::newRow("neither") << QPointF(NOT_A_NUMBER, NOT_A_NUMBER) << QPoint(MIN_PIXEL, MIN_PIXEL);
    QTest::newRow("infinite") << QPointF(INF, INF) << QPoint(MAX_PIXEL, MIN_PIXEL);
    QTest::newRow("infinite downward") << QPointF(-INF, -INF) << QPoint(MIN_PIXEL, MAX_PIXEL);
}

void ClosestPointTest::a_point_that_is_no_number_lies_far_away()
{
    QFETCH(QPointF, strange);
    QFETCH(QPoint, pixel);
    Bench bench;
    Series& series = bench.add({});
    // Past the ranges: these stay as the bench set them.
    series.points.append(strange);
    QCOMPARE(bench.find(10, 10).series, &series);
    QCOMPARE(bench.find(10, 10).pixel, pixel);
    series.points.append(QPointF(900.0, 900.0));
    QCOMPARE(bench.find(10, 10).point, QPointF(900.0, 900.0));
}

void ClosestPointTest::the_ends_of_the_pixel_range_are_still_measured()
{
    Bench bench;
    bench.add({{-1e300, 1e300}, {1e300, 1e300}, {1e300, -1e300}});
    // All of them are some two thousand million pixels away, in both directions.
    QCOMPARE(bench.find(20000, 20000).pixel, QPoint(MAX_PIXEL, MAX_PIXEL));
    QCOMPARE(bench.find(-20000, -20000).pixel, QPoint(MIN_PIXEL, MIN_PIXEL));
    QCOMPARE(bench.find(MIN_PIXEL, MIN_PIXEL).pixel, QPoint(MIN_PIXEL, MIN_PIXEL));
}

void ClosestPointTest::a_chart_without_span_is_searched()
{
    Bench bench;
    bench.chart.bottom_axis.range.max = 0.0;
    bench.chart.left_axis.range = Interval();
    Series& series = bench.add({{1.0, 2.0}, {3.0, 4.0}});
    QCOMPARE(bench.find(10, 10).series, &series);
}

void ClosestPointTest::random_curves_give_what_the_plain_rule_gives_data()
{
    QTest::addColumn<double>("grid");
    QTest::addColumn<double>("offset");
    QTest::addColumn<bool>("in_order");
    QTest::newRow("strewn") << 1e-6 << 0.0 << false;
    QTest::newRow("in order") << 1e-6 << 0.0 << true;
    QTest::newRow("strewn, many equally near") << 40.0 << 0.0 << false;
    QTest::newRow("in order, many equally near") << 40.0 << 0.0 << true;
    QTest::newRow("equally near in single precision") << 1e-6 << 1e9 << false;
    QTest::newRow("partly beyond the pixels") << 1e-6 << double(MAX_PIXEL) - 500.0 << false;
    QTest::newRow("partly beyond the pixels on the left") << 1e-6 << double(MIN_PIXEL) << true;
}

void ClosestPointTest::random_curves_give_what_the_plain_rule_gives()
{
    QFETCH(double, grid);
    QFETCH(double, offset);
    QFETCH(bool, in_order);
    std::mt19937 random(4711);
    std::uniform_real_distribution<double> anywhere(-200.0, 1200.0);
    const auto coordinate = [&] {
        return std::round(anywhere(random) / grid) * grid;
    };
    std::uniform_int_distribution<int> mouse(0, 1000);
    Bench bench;
    for (int curve = 0; curve < 5; ++curve)
        bench.add({});
    for (int i = 0; i < 400; ++i) {
        for (Series* const series : qAsConst(bench.list))
            series->add(offset + coordinate(), coordinate());
    }

    for (Series* const series : qAsConst(bench.list)) {
        if (in_order)
            std::sort(series->points.begin(), series->points.end(), lies_left_of);
    }
    std::reverse(bench.list.begin(), bench.list.end());
    for (int i = 0; i < 500; ++i) {
        const QPoint pixel(mouse(random), mouse(random));
        const ClosestPoint expected = plainly_closest(bench.list, pixel);
        const ClosestPoint found = find_closest_point(bench.list, pixel);
        QCOMPARE(found.series, expected.series);
        QCOMPARE(found.point, expected.point);
        QCOMPARE(found.pixel, expected.pixel);
    }
}

KEST_GUILESS_TEST(ClosestPointTest)
#include "tst_closest_point.moc"
