#include "zoom_bench.h"
#include "support/test_program.h"

#include <QGuiApplication>
#include <QPainter>
#include <QRubberBand>
#include <QScreen>

namespace
{
QPoint pixel(const LineChart& chart, double x, double y)
{
    return {chart.bottom_axis.map_value(x), chart.left_axis.map_value(y)};
}

/** What a chart that shows exactly this rectangle would show, snapped to its gridlines. */
QList<double> snapped(const ChartWindow& bench, const Interval& x, const Interval& y)
{
    ZoomInterval zoom;
    zoom.x = x;
    zoom.y = y;
    LineChart chart;
    chart.top_axis.caption = upper_chart().top_axis.caption;
    chart.bottom_axis.caption = upper_chart().bottom_axis.caption;
    chart.left_axis.caption = upper_chart().left_axis.caption;
    Series series;
    series.add(1.0, 1.0);
    QPixmap pixmap(bench.upper->size());
    QPainter painter(&pixmap);
    const double dpi = QGuiApplication::primaryScreen()->physicalDotsPerInch();
    chart.plot({&series}, &painter, bench.upper->rect(), dpi * 0.5, LINES, 0.2, 1, int(dpi), false,
               &zoom);
    return {chart.bottom_axis.range.min, chart.bottom_axis.range.max, chart.left_axis.range.min,
            chart.left_axis.range.max};
}

Interval interval(double a, double b)
{
    Interval result;
    result.include(a);
    result.include(b);
    return result;
}
}  // namespace

/** The rectangles that the operator drags over the charts. */
class ZoomTest : public QObject
{
    Q_OBJECT

private slots:
    void a_drag_zooms_its_chart();
    void the_rectangle_is_read_in_the_latest_layout();
    void a_new_rectangle_replaces_the_zoom();
    void the_zoom_outlives_new_points();
    void both_charts_zoom_on_their_own();
    void the_lower_charts_are_read_by_their_own_axes_data();
    void the_lower_charts_are_read_by_their_own_axes();
    void zooming_repaints_both_charts();
    void cancel_shows_everything_again_at_once();
    void a_change_of_the_lower_chart_drops_its_zoom();
    void rectangles_of_others_are_ignored();
    void a_window_closed_with_its_zoom_is_survived();
};

void ZoomTest::a_drag_zooms_its_chart()
{
    ZoomBench bench;
    QVERIFY(!bench.cancel_upper()->isEnabled());
    const QPoint from = pixel(upper_chart(), 2.0, 8.0);
    const QPoint to = pixel(upper_chart(), 6.0, 3.0);
    const Interval x = interval(upper_chart().bottom_axis.unmap_value(from.x()),
                                upper_chart().bottom_axis.unmap_value(to.x() - 1));
    const Interval y = interval(upper_chart().left_axis.unmap_value(from.y()),
                                upper_chart().left_axis.unmap_value(to.y() - 1));
    ChartWindow::drag(bench.upper, from, to);
    QVERIFY(bench.upper->findChild<QRubberBand*>() == nullptr);
    QVERIFY(bench.cancel_upper()->isEnabled());
    QVERIFY(!bench.cancel_lower()->isEnabled());
    QVERIFY(bench.answers.seen.empty());
    const QList<double> shown = bench.upper_ranges();
    QCOMPARE(shown, snapped(bench, x, y));
    // Somewhat more than was marked, and not the origin.
    QVERIFY(shown[0] > 0.0 && shown[0] <= 2.0 && shown[1] >= 5.9 && shown[1] < 8.0);
    QVERIFY(shown[2] > 0.0 && shown[2] <= 3.1 && shown[3] >= 8.0 && shown[3] < 10.0);
}

void ZoomTest::the_rectangle_is_read_in_the_latest_layout()
{
    ZoomBench bench;
    pin_layout(upper_chart());
    report(bench.upper, QRect(QPoint(150, 250), QPoint(349, 399)));
    QCOMPARE(bench.upper_ranges(), snapped(bench, interval(0.5, 2.49), interval(1.01, 2.5)));
}

void ZoomTest::a_new_rectangle_replaces_the_zoom()
{
    ZoomBench bench;
    for (int i = 0; i < 2; ++i) {
        const QPoint centre = bench.upper->rect().center();
        ChartWindow::drag(bench.upper, centre - QPoint(200, 100), centre + QPoint(200, 100));
        bench.settle();
    }
    QVERIFY(bench.answers.seen.empty());
    const QList<double> shown = bench.upper_ranges();
    QVERIFY(shown[1] - shown[0] < 4.0);
    QTest::mouseClick(bench.cancel_upper(), Qt::LeftButton);
    // One step back to everything, however many there were.
    QCOMPARE(bench.upper_ranges()[0], 0.0);
}

void ZoomTest::the_zoom_outlives_new_points()
{
    ZoomBench bench;
    pin_layout(upper_chart());
    report(bench.upper, QRect(QPoint(150, 250), QPoint(349, 399)));
    const QList<double> before = bench.upper_ranges();
    bench.cycle->voltage_vs_amphours.add(1000.0, 1000.0);
    QCOMPARE(bench.upper_ranges(), before);
    QTest::mouseClick(bench.cancel_upper(), Qt::LeftButton);
    QVERIFY(bench.upper_ranges()[1] >= 1000.0);
}

void ZoomTest::both_charts_zoom_on_their_own()
{
    ZoomBench bench;
    const QList<double> upper_before = bench.upper_ranges();
    const QRect box = bench.lower->rect();
    ChartWindow::drag(bench.lower, box.center() - QPoint(60, 40), box.center() + QPoint(60, 40));
    QVERIFY(bench.cancel_lower()->isEnabled());
    QVERIFY(!bench.cancel_upper()->isEnabled());
    QCOMPARE(bench.upper_ranges(), upper_before);
    QVERIFY(ZoomBench::ranges(bench.lower, TestStation::current_vs_amphours_chart)[0] > 0.0);
}

void ZoomTest::the_lower_charts_are_read_by_their_own_axes_data()
{
    QTest::addColumn<QString>("choice");
    QTest::newRow("current") << "Current";
    QTest::newRow("resistance") << "RBatt";
}

void ZoomTest::the_lower_charts_are_read_by_their_own_axes()
{
    QFETCH(QString, choice);
    ZoomBench bench;
    bench.choose(qPrintable(choice));
    const bool current = choice == "Current";
    LineChart& chart =
        current ? TestStation::current_vs_amphours_chart : TestStation::internal_resistance_chart;
    LineChart& other =
        current ? TestStation::internal_resistance_chart : TestStation::current_vs_amphours_chart;
    pin_layout(chart);
    // By the axes of the other two the same rectangle would be refused.
    for (LineChart* wrong : {&other, &upper_chart()}) {
        pin_layout(*wrong);
        wrong->bottom_axis.range.max = 0.001;
    }
    report(bench.lower, QRect(QPoint(150, 250), QPoint(349, 399)));
    QVERIFY(bench.answers.seen.empty());
    QVERIFY(bench.cancel_lower()->isEnabled());
    const QList<double> shown = ZoomBench::ranges(bench.lower, chart);
    QVERIFY(shown[0] <= 0.5 && shown[1] >= 2.49 && shown[1] < 4.0);
    QVERIFY(shown[2] <= 1.01 && shown[3] >= 2.5 && shown[3] < 4.0);
}

void ZoomTest::zooming_repaints_both_charts()
{
    ZoomBench bench;
    const PaintCounter upper(bench.upper);
    const PaintCounter lower(bench.lower);
    report(bench.upper, QRect(QPoint(100, 100), QPoint(300, 200)));
    QVERIFY(bench.answers.seen.empty());
    bench.settle();
    QCOMPARE(upper.count, 1);
    QCOMPARE(lower.count, 1);
}

void ZoomTest::cancel_shows_everything_again_at_once()
{
    ZoomBench bench;
    const QList<double> all = bench.upper_ranges();
    const QList<double> all_lower =
        ZoomBench::ranges(bench.lower, TestStation::current_vs_amphours_chart);
    for (PaintBox* box : {bench.upper, bench.lower})
        report(box, QRect(QPoint(100, 100), QPoint(300, 200)));
    bench.settle();

    const PaintCounter upper(bench.upper);
    bench.cancel_upper()->click();
    QVERIFY(upper.count >= 1);
    QVERIFY(!bench.cancel_upper()->isEnabled());
    QVERIFY(bench.cancel_lower()->isEnabled());
    QCOMPARE(bench.upper_ranges(), all);

    const PaintCounter lower(bench.lower);
    QTest::mouseClick(bench.cancel_lower(), Qt::LeftButton);
    QVERIFY(lower.count >= 1);
    QVERIFY(!bench.cancel_lower()->isEnabled());
    QCOMPARE(ZoomBench::ranges(bench.lower, TestStation::current_vs_amphours_chart), all_lower);
}

void ZoomTest::a_change_of_the_lower_chart_drops_its_zoom()
{
    ZoomBench bench;
    const QList<double> all =
        ZoomBench::ranges(bench.lower, TestStation::current_vs_amphours_chart);
    for (PaintBox* box : {bench.upper, bench.lower})
        report(box, QRect(QPoint(100, 100), QPoint(300, 200)));
    QVERIFY(bench.cancel_lower()->isEnabled());
    bench.choose("RBatt");
    QVERIFY(!bench.cancel_lower()->isEnabled());
    QVERIFY(bench.cancel_upper()->isEnabled());
    QCOMPARE(ZoomBench::ranges(bench.lower, TestStation::internal_resistance_chart)[0], 0.0);

    report(bench.lower, QRect(QPoint(100, 100), QPoint(300, 200)));
    QVERIFY(bench.cancel_lower()->isEnabled());
    bench.choose("Current");
    QVERIFY(!bench.cancel_lower()->isEnabled());
    QCOMPARE(ZoomBench::ranges(bench.lower, TestStation::current_vs_amphours_chart), all);
}

void ZoomTest::rectangles_of_others_are_ignored()
{
    ZoomBench bench;
    QMetaObject::invokeMethod(bench.window.get(), "slot_rubberband",
                              Q_ARG(QRect, QRect(100, 100, 200, 100)));
    emit bench.header->sig_rubberband(QRect(100, 100, 200, 100));
    ChartWindow::drag(bench.header, {100, 10}, {300, 60});
    QVERIFY(bench.answers.seen.empty());
    QVERIFY(!bench.cancel_upper()->isEnabled());
    QVERIFY(!bench.cancel_lower()->isEnabled());
}

void ZoomTest::a_window_closed_with_its_zoom_is_survived()
{
    auto bench = std::make_unique<ZoomBench>();
    report(bench->upper, QRect(QPoint(100, 100), QPoint(300, 200)));
    QVERIFY(bench->cancel_upper()->isEnabled());
    bench.reset();
    const ZoomBench next;
    QVERIFY(!next.cancel_upper()->isEnabled());
    QCOMPARE(next.upper_ranges()[0], 0.0);
}

KEST_TEST(ZoomTest)
#include "tst_zoom.moc"
