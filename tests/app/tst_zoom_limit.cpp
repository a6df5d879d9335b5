#include "zoom_bench.h"
#include "support/test_program.h"

#include <limits>

/** Which rectangles are refused, and what the others may be. */
class ZoomLimitTest : public QObject
{
    Q_OBJECT

private slots:
    void a_click_is_refused();
    void a_click_is_accepted_where_a_pixel_is_wide_enough();
    void the_limit_is_a_tenth_data();
    void the_limit_is_a_tenth();
    void a_refused_rectangle_leaves_the_zoom_in_force();
    void a_rectangle_in_the_margin_is_accepted();
    void a_rectangle_far_outside_of_the_data_is_survived();
    void an_empty_chart_is_not_zoomed();
    void a_zoomed_chart_without_curves_is_not_zoomed_further();
};

void ZoomLimitTest::a_click_is_refused()
{
    ZoomBench bench;
    bench.answers.click(QMessageBox::Ok);
    QTest::mouseClick(bench.upper, Qt::LeftButton, {}, bench.upper->rect().center());
    bench.verify_refused();
    QVERIFY(!bench.cancel_upper()->isEnabled());
}

void ZoomLimitTest::a_click_is_accepted_where_a_pixel_is_wide_enough()
{
    ZoomBench bench;
    bench.cycle->voltage_vs_amphours.add(1000.0, 1000.0);
    bench.upper->repaint();
    QTest::mouseClick(bench.upper, Qt::LeftButton, {}, bench.upper->rect().center());
    QVERIFY(bench.answers.seen.empty());
    QVERIFY(bench.cancel_upper()->isEnabled());
}

void ZoomLimitTest::the_limit_is_a_tenth_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<bool>("accepted");
    // Ten pixels are a tenth; from the origin on, that is exact.
    QTest::newRow("both exactly") << QRect(QPoint(100, 490), QPoint(110, 500)) << true;
    QTest::newRow("x below") << QRect(QPoint(100, 490), QPoint(109, 500)) << false;
    QTest::newRow("y below") << QRect(QPoint(100, 491), QPoint(110, 500)) << false;
    QTest::newRow("both below") << QRect(QPoint(100, 491), QPoint(109, 500)) << false;
    QTest::newRow("no size") << QRect(QPoint(200, 200), QPoint(199, 199)) << false;
    QTest::newRow("a line") << QRect(QPoint(100, 300), QPoint(400, 300)) << false;
    QTest::newRow("wrong way round") << QRect(QPoint(110, 500), QPoint(100, 490)) << true;
}

void ZoomLimitTest::the_limit_is_a_tenth()
{
    QFETCH(QRect, rect);
    QFETCH(bool, accepted);
    ZoomBench bench;
    pin_layout(upper_chart());
    if (!accepted)
        bench.answers.click(QMessageBox::Ok);
    report(bench.upper, rect);
    if (!accepted)
        bench.verify_refused();
    QVERIFY(bench.answers.seen.empty());
    QCOMPARE(bench.cancel_upper()->isEnabled(), accepted);
}

void ZoomLimitTest::a_refused_rectangle_leaves_the_zoom_in_force()
{
    ZoomBench bench;
    pin_layout(upper_chart());
    report(bench.upper, QRect(QPoint(150, 250), QPoint(349, 399)));
    const QList<double> before = bench.upper_ranges();
    bench.answers.click(QMessageBox::Ok);
    QTest::mouseClick(bench.upper, Qt::LeftButton, {}, bench.upper->rect().center());
    bench.verify_refused();
    QVERIFY(bench.cancel_upper()->isEnabled());
    QCOMPARE(bench.upper_ranges(), before);
}

void ZoomLimitTest::a_rectangle_in_the_margin_is_accepted()
{
    ZoomBench bench;
    // The strip to the left of the plot area: all of it lies below zero.
    const int left = upper_chart().bottom_axis.origin;
    ChartWindow::drag(bench.upper, {left - 25, 40}, {left - 2, 140});
    QVERIFY(bench.answers.seen.empty());
    QVERIFY(bench.cancel_upper()->isEnabled());
    QVERIFY(bench.upper_ranges()[0] < 0.0);
}

void ZoomLimitTest::a_rectangle_far_outside_of_the_data_is_survived()
{
    ZoomBench bench;
    for (const QPoint& far : {QPoint(20000, 30000), QPoint(-30000, -20000)}) {
        const QPoint end = far + QPoint(3000, 2000);
        // A rectangle of every kind: smoothed lines, every sample, dots.
        report(bench.upper, QRect(far, end));
        report(bench.lower, QRect(far, end));
        bench.window->slot_refresh_charts();
        bench.hover(bench.upper, bench.upper->rect().center());
        QVERIFY(!bench.shown(bench.upper).isNull());
        bench.choose("RBatt");
        bench.lower->repaint();
        report(bench.lower, QRect(far, end));
        QVERIFY(!bench.shown(bench.lower).isNull());
        bench.choose("Current");
        QTest::mouseClick(bench.cancel_upper(), Qt::LeftButton);
    }
    const int most = std::numeric_limits<int>::max();
    report(bench.upper, QRect(QPoint(-most, -most), QPoint(most, most)));
    QVERIFY(bench.answers.seen.empty());
    QVERIFY(!bench.shown(bench.upper).isNull());
}

void ZoomLimitTest::an_empty_chart_is_not_zoomed()
{
    ZoomBench bench;
    bench.cycle->checkbox.setChecked(false);
    bench.upper->repaint();
    bench.answers.click(QMessageBox::Ok);
    ChartWindow::drag(bench.upper, {60, 60}, {160, 160});
    bench.verify_refused();
    QVERIFY(!bench.cancel_upper()->isEnabled());
}

void ZoomLimitTest::a_zoomed_chart_without_curves_is_not_zoomed_further()
{
    ZoomBench bench;
    pin_layout(upper_chart());
    report(bench.upper, QRect(QPoint(150, 250), QPoint(349, 399)));
    const QList<double> before = bench.upper_ranges();
    bench.cycle->checkbox.setChecked(false);
    bench.upper->repaint();
    const QPoint corner(upper_chart().bottom_axis.origin, upper_chart().left_axis.origin);
    for (const QPoint& to : {QPoint(30, -30), QPoint(-30, 30), QPoint(30, 30), QPoint(-30, -30)}) {
        bench.answers.click(QMessageBox::Ok);
        ChartWindow::drag(bench.upper, corner - to, corner + to);
        bench.verify_refused();
    }
    bench.cycle->checkbox.setChecked(true);
    QCOMPARE(bench.upper_ranges(), before);
}

KEST_TEST(ZoomLimitTest)
#include "tst_zoom_limit.moc"
