#include "charts/axis.h"
#include "expected_drawing.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QPainter>
#include <QtTest>

#include <limits>

namespace
{

constexpr int LOWEST = std::numeric_limits<int>::min();
constexpr int HIGHEST = std::numeric_limits<int>::max();

Axis axis_with(Side side, int origin, int length, double min, double max)
{
    Axis axis(side);
    axis.in_use = true;
    axis.origin = origin;
    axis.length = length;
    axis.range.include(min);
    axis.range.include(max);
    return axis;
}

}  // namespace

class AxisTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_axis_is_not_in_use_data();
    void a_fresh_axis_is_not_in_use();
    void the_sides_have_their_numbers();
    void values_are_mapped_to_truncated_pixels_data();
    void values_are_mapped_to_truncated_pixels();
    void a_pixel_beyond_an_int_is_the_nearest_one_data();
    void a_pixel_beyond_an_int_is_the_nearest_one();
    void pixels_are_mapped_back_data();
    void pixels_are_mapped_back();
    void an_extreme_pixel_is_mapped_back_without_overflow();
    void spacings_are_round_data();
    void spacings_are_round();
    void a_range_that_has_no_grid_is_left_alone_data();
    void a_range_that_has_no_grid_is_left_alone();
    void a_grid_has_an_end_data();
    void a_grid_has_an_end();
    void indices_round_half_away_from_zero();
    void the_axis_with_fewer_intervals_grows_at_its_top();
    void equal_counts_change_nothing();
    void an_axis_out_of_use_is_not_matched();
    void an_axis_without_a_grid_is_not_matched();
    void a_zero_span_shows_its_value_at_the_origin();
    void only_the_label_of_the_maximum_is_measured();
    void captions_stand_along_their_sides_data();
    void captions_stand_along_their_sides();
};

void AxisTest::a_fresh_axis_is_not_in_use_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("direction");
    QTest::newRow("top") << int(TOP) << 1;
    QTest::newRow("bottom") << int(BOTTOM) << 1;
    QTest::newRow("left") << int(LEFT) << -1;
    QTest::newRow("right") << int(RIGHT) << -1;
}

void AxisTest::a_fresh_axis_is_not_in_use()
{
    QFETCH(int, side);
    const Axis axis(static_cast<Side>(side));
    QTEST(axis.direction, "direction");
    QCOMPARE(int(axis.side), side);
    QVERIFY(!axis.in_use);
    QCOMPARE(axis.origin, 0);
    QCOMPARE(axis.length, 0);
    QVERIFY(axis.caption.isEmpty());
    QVERIFY(qIsInf(axis.forced_range.min));
    QVERIFY(qIsInf(axis.forced_range.max));
}

void AxisTest::the_sides_have_their_numbers()
{
    QCOMPARE(int(TOP), 0);
    QCOMPARE(int(BOTTOM), 1);
    QCOMPARE(int(LEFT), 2);
    QCOMPARE(int(RIGHT), 3);
}

void AxisTest::values_are_mapped_to_truncated_pixels_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("origin");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("pixel");
    QTest::newRow("start") << int(BOTTOM) << 50 << 0.0 << 50;
    QTest::newRow("end") << int(BOTTOM) << 50 << 10.0 << 530;
    QTest::newRow("truncated, not rounded") << int(BOTTOM) << 50 << 0.999 / 48.0 << 50;
    QTest::newRow("just below the range at origin 0") << int(BOTTOM) << 0 << -0.9 / 48.0 << 0;
    QTest::newRow("a pixel below the range") << int(BOTTOM) << 0 << -1.1 / 48.0 << -1;
    QTest::newRow("top like bottom") << int(TOP) << 50 << 5.0 << 290;
    QTest::newRow("left starts at the bottom") << int(LEFT) << 500 << 0.0 << 500;
    QTest::newRow("left falls as values rise") << int(LEFT) << 500 << 10.0 << 20;
    QTest::newRow("left truncates toward zero") << int(LEFT) << 500 << 0.1 / 48.0 << 499;
    QTest::newRow("right like left") << int(RIGHT) << 500 << 5.0 << 260;
}

void AxisTest::values_are_mapped_to_truncated_pixels()
{
    QFETCH(int, side);
    QFETCH(int, origin);
    QFETCH(double, value);
    const Axis axis = axis_with(static_cast<Side>(side), origin, 480, 0.0, 10.0);
    QCOMPARE(axis.scale(), 48.0);
    QTEST(axis.map_value(value), "pixel");
}

void AxisTest::a_pixel_beyond_an_int_is_the_nearest_one_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("pixel");
    QTest::newRow("NaN") << qQNaN() << LOWEST;
    QTest::newRow("infinite") << qInf() << HIGHEST;
    QTest::newRow("minus infinite") << -qInf() << LOWEST;
    QTest::newRow("huge") << 1e300 << HIGHEST;
    QTest::newRow("huge and negative") << -1e300 << LOWEST;
    QTest::newRow("the last that fits") << 2147483647.9 << HIGHEST;
    QTest::newRow("the first that does not") << 2147483648.0 << HIGHEST;
    QTest::newRow("the lowest that fits") << -2147483648.9 << LOWEST;
    QTest::newRow("the first that does not, below") << -2147483649.0 << LOWEST;
}

void AxisTest::a_pixel_beyond_an_int_is_the_nearest_one()
{
    QFETCH(double, value);
    const Axis axis = axis_with(BOTTOM, 0, 480, 0.0, 480.0);
    QTEST(axis.map_value(value), "pixel");
    QTEST(to_pixel(value), "pixel");
}

void AxisTest::pixels_are_mapped_back_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("pixel");
    QTest::addColumn<double>("value");
    QTest::newRow("bottom, start") << int(BOTTOM) << 100 << 2.0;
    QTest::newRow("bottom, end") << int(BOTTOM) << 580 << 12.0;
    QTest::newRow("bottom, before the start") << int(BOTTOM) << 52 << 1.0;
    QTest::newRow("left, start") << int(LEFT) << 100 << 2.0;
    QTest::newRow("left, above") << int(LEFT) << 52 << 3.0;
}

void AxisTest::pixels_are_mapped_back()
{
    QFETCH(int, side);
    QFETCH(int, pixel);
    const Axis axis = axis_with(static_cast<Side>(side), 100, 480, 2.0, 12.0);
    QTEST(axis.unmap_value(pixel), "value");
}

void AxisTest::an_extreme_pixel_is_mapped_back_without_overflow()
{
    const Axis axis = axis_with(BOTTOM, 100, 1, 0.0, 1.0);
    QCOMPARE(axis.unmap_value(LOWEST), -2147483748.0);
}

void AxisTest::spacings_are_round_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<int>("decimals");
    QTest::addColumn<double>("snapped_min");
    QTest::addColumn<double>("snapped_max");
    QTest::newRow("raw 0.37") << 0.0 << 3.7 << 0.5 << 1 << 0.0 << 4.0;
    QTest::newRow("raw 1 takes 2") << 0.0 << 10.0 << 2.0 << 0 << 0.0 << 10.0;
    QTest::newRow("raw 3 takes 5") << 0.0 << 30.0 << 5.0 << 0 << 0.0 << 30.0;
    QTest::newRow("raw 5.9 takes 5") << 0.0 << 59.0 << 5.0 << 0 << 0.0 << 60.0;
    QTest::newRow("raw 6 takes 10") << 0.0 << 60.0 << 10.0 << 0 << 0.0 << 60.0;
    QTest::newRow("step 10 keeps a decimal") << 0.0 << 0.07 << 0.01 << 3 << 0.0 << 0.08;
    QTest::newRow("never fewer than no decimals") << 0.0 << 200.0 << 20.0 << 0 << 0.0 << 200.0;
    QTest::newRow("negative range") << -7.3 << -2.1 << 0.5 << 1 << -7.5 << -2.0;
    QTest::newRow("both signs") << -11.0 << 13.0 << 2.0 << 0 << -12.0 << 14.0;
}

void AxisTest::spacings_are_round()
{
    QFETCH(double, min);
    QFETCH(double, max);
    Axis axis = axis_with(BOTTOM, 0, 480, min, max);
    axis.optimize_gridline_spacing(48.0);
    QTEST(axis.gridline_spacing, "spacing");
    QTEST(axis.num_decimals, "decimals");
    QTEST(axis.range.min, "snapped_min");
    QTEST(axis.range.max, "snapped_max");
    QVERIFY(axis.has_grid());
}

void AxisTest::a_range_that_has_no_grid_is_left_alone_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<int>("length");
    QTest::addColumn<double>("pixels");
    QTest::newRow("no span") << 5.0 << 5.0 << 480 << 48.0;
    QTest::newRow("no span at zero") << 0.0 << 0.0 << 480 << 48.0;
    QTest::newRow("empty") << qInf() << -qInf() << 480 << 48.0;
    QTest::newRow("infinite") << -qInf() << qInf() << 480 << 48.0;
    QTest::newRow("infinite at one end") << 0.0 << qInf() << 480 << 48.0;
    QTest::newRow("the longest span") << -1.7e308 << 1.7e308 << 480 << 48.0;
    QTest::newRow("no length") << 0.0 << 10.0 << 0 << 48.0;
    QTest::newRow("negative length") << 0.0 << 10.0 << -480 << 48.0;
    QTest::newRow("no wanted distance") << 0.0 << 10.0 << 480 << 0.0;
    QTest::newRow("negative wanted distance") << 0.0 << 10.0 << 480 << -48.0;
    QTest::newRow("NaN wanted") << 0.0 << 10.0 << 480 << qQNaN();
    QTest::newRow("infinitely many lines") << 0.0 << 10.0 << 480 << 1e-300;
}

void AxisTest::a_range_that_has_no_grid_is_left_alone()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(int, length);
    QFETCH(double, pixels);
    Axis axis(BOTTOM);
    axis.length = length;
    axis.range.min = min;
    axis.range.max = max;
    axis.optimize_gridline_spacing(pixels);
    QVERIFY(!axis.has_grid());
    QCOMPARE(axis.range.min, min);
    QCOMPARE(axis.range.max, max);
    axis.min_gridline_index();
    axis.max_gridline_index();
    axis.num_intervals();
}

void AxisTest::a_grid_has_an_end_data()
{
    QTest::addColumn<double>("min");
    QTest::addColumn<double>("max");
    QTest::addColumn<bool>("grid");
    QTest::newRow("a thousand intervals") << -250.0 << 250.0 << true;
    QTest::newRow("one more") << -250.0 << 250.5 << false;
    QTest::newRow("far above") << 5e8 - 5.0 << 5e8 << true;
    QTest::newRow("too far above") << 5e8 - 5.0 << 5e8 + 0.5 << false;
    QTest::newRow("far below") << -5e8 << 5.0 - 5e8 << true;
    QTest::newRow("too far below") << -5e8 - 0.5 << 5.0 - 5e8 << false;
}

void AxisTest::a_grid_has_an_end()
{
    QFETCH(double, min);
    QFETCH(double, max);
    Axis axis = axis_with(BOTTOM, 0, 480, min, max);
    axis.gridline_spacing = 0.5;
    QTEST(axis.has_grid(), "grid");
}

void AxisTest::indices_round_half_away_from_zero()
{
    Axis axis = axis_with(BOTTOM, 0, 480, -2.5, 2.5);
    axis.gridline_spacing = 1.0;
    QCOMPARE(axis.min_gridline_index(), -3);
    QCOMPARE(axis.max_gridline_index(), 3);
    QCOMPARE(axis.num_intervals(), 6);
}

void AxisTest::the_axis_with_fewer_intervals_grows_at_its_top()
{
    Axis many = axis_with(LEFT, 0, 480, 0.0, 10.0);
    Axis few = axis_with(RIGHT, 0, 480, 20.0, 35.0);
    many.gridline_spacing = 2.0;
    few.gridline_spacing = 5.0;
    Axis::match_num_intervals(&many, &few);
    QCOMPARE(few.range.min, 20.0);
    QCOMPARE(few.range.max, 45.0);
    QCOMPARE(many.range.max, 10.0);
    QCOMPARE(few.num_intervals(), many.num_intervals());

    Axis other_way_round = axis_with(LEFT, 0, 480, 20.0, 35.0);
    other_way_round.gridline_spacing = 5.0;
    Axis::match_num_intervals(&other_way_round, &many);
    QCOMPARE(other_way_round.range.max, 45.0);
}

void AxisTest::equal_counts_change_nothing()
{
    Axis a = axis_with(LEFT, 0, 480, 0.0, 10.0);
    Axis b = axis_with(RIGHT, 0, 480, 1.0, 6.0);
    a.gridline_spacing = 2.0;
    b.gridline_spacing = 1.0;
    Axis::match_num_intervals(&a, &b);
    QCOMPARE(a.range.max, 10.0);
    QCOMPARE(b.range.max, 6.0);
}

void AxisTest::an_axis_out_of_use_is_not_matched()
{
    for (const bool first_in_use : {true, false}) {
        Axis a = axis_with(LEFT, 0, 480, 0.0, 10.0);
        Axis b = axis_with(RIGHT, 0, 480, 0.0, 1.0);
        a.gridline_spacing = 1.0;
        b.gridline_spacing = 1.0;
        a.in_use = first_in_use;
        b.in_use = !first_in_use;
        Axis::match_num_intervals(&a, &b);
        QCOMPARE(a.range.max, 10.0);
        QCOMPARE(b.range.max, 1.0);
    }
}

void AxisTest::an_axis_without_a_grid_is_not_matched()
{
    Axis a = axis_with(LEFT, 0, 480, 0.0, 10.0);
    Axis b = axis_with(RIGHT, 0, 480, 7.0, 7.0);
    a.optimize_gridline_spacing(48.0);
    b.optimize_gridline_spacing(48.0);
    Axis::match_num_intervals(&a, &b);
    QCOMPARE(a.range.max, 10.0);
    QCOMPARE(b.range.max, 7.0);
}

void AxisTest::a_zero_span_shows_its_value_at_the_origin()
{
    const Axis axis = axis_with(LEFT, 300, 200, 7.0, 7.0);
    QCOMPARE(axis.scale(), qInf());
    QCOMPARE(axis.map_value(7.0), 300);
    QCOMPARE(axis.map_value(qQNaN()), LOWEST);
}

void AxisTest::only_the_label_of_the_maximum_is_measured()
{
    Axis axis = axis_with(LEFT, 0, 480, -1000.0, 2.5);
    axis.num_decimals = 2;
    RecordingPaintDevice device(100, 100);
    const QFontMetrics metrics(pinned_font(8), &device);
    QCOMPARE(axis.get_max_caption_width(metrics), metrics.horizontalAdvance("2.50"));
    axis.in_use = false;
    QCOMPARE(axis.get_max_caption_width(metrics), 0);
}

void AxisTest::captions_stand_along_their_sides_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<QString>("transform");

    // The font's 11 pixels from the edge; the middles of 10..309 and 20..119 in integer division.
    QTest::newRow("top") << int(TOP) << "1 0 0 1 at 159,31";
    QTest::newRow("bottom") << int(BOTTOM) << "1 0 0 1 at 159,108";
    QTest::newRow("left") << int(LEFT) << "0 -1 1 0 at 21,69";
    QTest::newRow("right") << int(RIGHT) << "0 -1 1 0 at 298,69";
}

void AxisTest::captions_stand_along_their_sides()
{
    QFETCH(int, side);
    Axis axis(static_cast<Side>(side));
    axis.caption = "Caption";
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    painter.setFont(pinned_font(8));
    QCOMPARE(painter.fontInfo().pixelSize(), 11);
    const QRect bounds = painter.fontMetrics().boundingRect("Caption");
    axis.plot_caption(&painter, QRect(10, 20, 300, 100));
    painter.end();

    QTEST(device.drawn("transform").value(0), "transform");
    QCOMPARE(device.drawn("text"), QStringList(QString("%1,%2 Caption")
                                                   .arg(-bounds.width() / 2.0)
                                                   .arg(-bounds.height() / 2.0 - bounds.top())));
}

KEST_TEST(AxisTest)
#include "tst_axis.moc"
