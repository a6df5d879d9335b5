#include "app/main_window.h"
#include "support/test_program.h"

#include "chart_window.h"
#include "charts/paint_box.h"
#include "common/colors.h"
#include "station/cycle_charts.h"
#include "station/test_station.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QtTest>

namespace
{
/** The smallest rectangle around all pixels in which two images differ. */
QRect changed_area(const QImage& a, const QImage& b)
{
    QRect area;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (a.pixel(x, y) != b.pixel(x, y))
                area |= QRect(x, y, 1, 1);
    return area;
}

QPoint pixel_of(const Series& series, int index)
{
    return series.map_point(series.points.at(index));
}
}  // namespace

/** The point nearest to the mouse, its dot and its tooltip. */
class HoverTest : public QObject
{
    Q_OBJECT

private slots:
    void the_dot_is_on_the_screen();
    void the_dot_moves_on_with_the_mouse();
    void the_dot_lies_on_top_of_names_and_frame();
    void the_tooltip_tells_the_point_data();
    void the_tooltip_tells_the_point();
    void numbers_have_six_digits();
    void the_tooltip_bears_the_serial_number_as_it_is_typed();
    void the_call_out_needs_no_mouse_event();
    void the_match_is_on_raw_points();
    void points_zoomed_away_count();
    void outside_the_box_the_last_tooltip_stays_data();
    void outside_the_box_the_last_tooltip_stays();
    void the_last_pixel_belongs_to_the_box();
    void without_a_point_the_tooltip_is_cleared();
    void an_unticked_cycle_is_not_found();
    void of_two_curves_that_cross_the_earlier_station_is_named();
    void both_charts_keep_their_own_tooltip();
    void a_station_closed_under_the_mouse_is_gone();
};

void HoverTest::the_dot_is_on_the_screen()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    station->color_combobox.setCurrentIndex(2);
    const TestCycle* cycle = bench.add_cycle(station, CURVE);
    bench.window->slot_refresh_charts();
    const QImage before = bench.shown(bench.upper);
    const QPoint point = pixel_of(cycle->voltage_vs_amphours, 1);
    bench.hover(bench.upper, point + QPoint(9, 12));
    bench.window->slot_refresh_charts();
    const QImage after = bench.shown(bench.upper);
    // Three pixels around the point in the station's colour, and nothing else.
    for (const QPoint& offset : {QPoint(0, 0), QPoint(0, 2), QPoint(0, -2), QPoint(2, 0),
                                 QPoint(-2, 0), QPoint(1, 1), QPoint(-1, 1), QPoint(1, -1)})
        QCOMPARE(after.pixelColor(point + offset), Colors::red);
    const QRect changed = changed_area(before, after);
    QVERIFY(QRect(point - QPoint(3, 3), point + QPoint(3, 3)).contains(changed));
    QVERIFY(changed.width() >= 6 && changed.height() >= 6);
}

void HoverTest::the_dot_moves_on_with_the_mouse()
{
    ChartWindow bench;
    const TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    bench.window->slot_refresh_charts();
    const QImage before = bench.shown(bench.upper);
    for (int i = 0; i < CURVE.size(); ++i) {
        const QPoint point = pixel_of(cycle->voltage_vs_amphours, i);
        bench.hover(bench.upper, point);
        bench.window->slot_refresh_charts();
        const QRect changed = changed_area(before, bench.shown(bench.upper));
        QVERIFY(QRect(point - QPoint(3, 3), point + QPoint(3, 3)).contains(changed));
        QVERIFY(!changed.isEmpty());
    }
}

void HoverTest::the_dot_lies_on_top_of_names_and_frame()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    station->color_combobox.setCurrentIndex(2);
    const TestCycle* cycle = bench.add_cycle(station, {{0.0, 0.0}, {3.0, 39.0}});
    bench.window->slot_refresh_charts();
    bench.settle();
    // The first point lies in the frame's corner, the last one in its own label.
    for (const int i : {0, 1}) {
        const QPoint point = pixel_of(cycle->voltage_vs_amphours, i);
        bench.hover(bench.upper, point);
        bench.window->slot_refresh_charts();
        const QImage image = bench.shown(bench.upper);
        for (const QPoint& offset : {QPoint(-2, 0), QPoint(0, 2), QPoint(2, 0), QPoint(0, -2)})
            QCOMPARE(image.pixelColor(point + offset), Colors::red);
    }
}

void HoverTest::the_tooltip_tells_the_point_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<QString>("tooltip");
    QTest::newRow("voltage") << 'V' << "Station 4:1\n1004\n1 Ah, 41 V";
    QTest::newRow("current") << 'I' << "Station 4:1\n1004\n1 Ah, 10 A";
    QTest::newRow("resistance") << 'R' << QString("Station 4:1\n1004\n1 Ah, 100 m") + QChar(0x2126);
}

void HoverTest::the_tooltip_tells_the_point()
{
    QFETCH(char, type);
    ChartWindow bench;
    const TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    if (type == 'R')
        bench.widget<QComboBox>("cbBottomChart")->setCurrentText("RBatt");
    PaintBox* box = type == 'V' ? bench.upper : bench.lower;
    QTEST(bench.told_at(box, cycle->*cycle_chart(type).curve, 1), "tooltip");
}

void HoverTest::numbers_have_six_digits()
{
    ChartWindow bench;
    const TestCycle* cycle =
        bench.add_cycle(bench.add_station(4), {{0.0000001, 42.0}, {1.23456789, 40.123449}});
    QCOMPARE(bench.told_at(bench.upper, cycle->voltage_vs_amphours, 1),
             QString("Station 4:1\n1004\n1.23457 Ah, 40.1234 V"));
    QCOMPARE(bench.told_at(bench.upper, cycle->voltage_vs_amphours, 0),
             QString("Station 4:1\n1004\n1e-07 Ah, 42 V"));
}

void HoverTest::the_tooltip_bears_the_serial_number_as_it_is_typed()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    const TestCycle* cycle = bench.add_cycle(station, CURVE);
    // Looks like places for the other values, and is none.
    station->serial_number_label.setText("%1 %2 %3 %4 %5");
    QCOMPARE(bench.told_at(bench.upper, cycle->voltage_vs_amphours, 1),
             QString("Station 4:1\n%1 %2 %3 %4 %5\n1 Ah, 41 V"));
}

void HoverTest::the_call_out_needs_no_mouse_event()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    TestCycle* cycle = bench.add_cycle(station, {{0.0, 42.0}, {3.0, 39.0}});
    bench.upper->repaint();
    bench.hover(bench.upper, pixel_of(cycle->voltage_vs_amphours, 0) + QPoint(30, 0));
    bench.upper->repaint();
    QCOMPARE(bench.upper->toolTip(), QString("Station 4:1\n1004\n0 Ah, 42 V"));
    // A point arrives while the mouse rests.
    cycle->voltage_vs_amphours.add(0.2, 42.0);
    bench.window->slot_refresh_charts();
    bench.settle();
    QCOMPARE(bench.upper->toolTip(), QString("Station 4:1\n1004\n0.2 Ah, 42 V"));
}

void HoverTest::the_match_is_on_raw_points()
{
    ChartWindow bench;
    // Two in each smoothing interval, and many pixels apart in whatever font the margins are.
    QList<QPointF> jagged;
    for (int i = 0; i <= 30; ++i)
        jagged.append({i * 0.1, i % 2 == 0 ? 42.0 : 20.0});
    const TestCycle* cycle = bench.add_cycle(bench.add_station(4), jagged);
    QVERIFY(bench.widget<QCheckBox>("cbSmoothVoltageChart")->isChecked());
    bench.upper->repaint();
    bench.hover(bench.upper, pixel_of(cycle->voltage_vs_amphours, 15) + QPoint(0, 1));
    bench.upper->repaint();
    QCOMPARE(bench.upper->toolTip(), QString("Station 4:1\n1004\n1.5 Ah, 20 V"));
}

void HoverTest::points_zoomed_away_count()
{
    ChartWindow bench;
    TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    bench.upper->repaint();
    const QPoint last = pixel_of(cycle->voltage_vs_amphours, 3);
    const QPoint zero(TestStation::voltage_vs_amphours_chart.bottom_axis.origin,
                      TestStation::voltage_vs_amphours_chart.left_axis.origin);
    // The middle of the area below the curve, where there is no point.
    ChartWindow::drag(bench.upper, zero + (last - zero) * 0.6, zero + (last - zero) * 0.4);
    bench.settle();
    QVERIFY(bench.answers.seen.empty());
    bench.hover(bench.upper, bench.upper->rect().center());
    bench.upper->repaint();
    QVERIFY(bench.upper->toolTip().startsWith("Station 4:1\n1004\n"));
}

void HoverTest::outside_the_box_the_last_tooltip_stays_data()
{
    QTest::addColumn<QPoint>("step");
    QTest::newRow("above") << QPoint(0, -1);
    QTest::newRow("below") << QPoint(0, 1);
    QTest::newRow("left") << QPoint(-1, 0);
    QTest::newRow("right") << QPoint(1, 0);
}

void HoverTest::outside_the_box_the_last_tooltip_stays()
{
    QFETCH(QPoint, step);
    ChartWindow bench;
    TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    bench.window->slot_refresh_charts();
    const QImage before = bench.shown(bench.upper);
    bench.hover(bench.upper, pixel_of(cycle->voltage_vs_amphours, 0));
    bench.upper->repaint();
    const QString told = bench.upper->toolTip();
    QVERIFY(!told.isEmpty());
    const QRect box = bench.upper->rect();
    const QPoint inside =
        box.center() + QPoint(step.x() * (box.width() / 2), step.y() * (box.height() / 2));
    const QPoint edge(qBound(0, inside.x(), box.right()), qBound(0, inside.y(), box.bottom()));
    bench.hover(bench.upper, edge + step);
    bench.window->slot_refresh_charts();
    QCOMPARE(bench.shown(bench.upper), before);
    QCOMPARE(bench.upper->toolTip(), told);
    cycle->checkbox.setChecked(false);
    bench.upper->repaint();
    QCOMPARE(bench.upper->toolTip(), told);
}

void HoverTest::the_last_pixel_belongs_to_the_box()
{
    ChartWindow bench;
    bench.add_cycle(bench.add_station(4), CURVE);
    for (const QPoint& corner :
         {bench.upper->rect().topLeft(), bench.upper->rect().bottomRight()}) {
        bench.upper->setToolTip("");
        bench.hover(bench.upper, corner);
        bench.upper->repaint();
        QVERIFY(!bench.upper->toolTip().isEmpty());
    }
}

void HoverTest::without_a_point_the_tooltip_is_cleared()
{
    ChartWindow bench;
    TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    bench.add_cycle(TestStation::all_instances.first(), {});
    bench.hover(bench.upper, bench.upper->rect().center());
    bench.upper->repaint();
    QVERIFY(!bench.upper->toolTip().isEmpty());
    cycle->checkbox.setChecked(false);
    bench.upper->repaint();
    QCOMPARE(bench.upper->toolTip(), QString());
}

void HoverTest::an_unticked_cycle_is_not_found()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    TestCycle* first = bench.add_cycle(station, CURVE);
    bench.add_cycle(station, CURVE);
    QCOMPARE(bench.told_at(bench.upper, first->voltage_vs_amphours, 1),
             QString("Station 4:1\n1004\n1 Ah, 41 V"));
    first->checkbox.setChecked(false);
    bench.upper->repaint();
    QCOMPARE(bench.upper->toolTip(), QString("Station 4:2\n1004\n1 Ah, 41 V"));
}

void HoverTest::of_two_curves_that_cross_the_earlier_station_is_named()
{
    ChartWindow bench;
    TestStation* later = bench.add_station(6);
    TestStation* earlier = bench.add_station(5);
    later->color_combobox.setCurrentIndex(2);
    earlier->color_combobox.setCurrentIndex(5);
    const TestCycle* falling = bench.add_cycle(later, {{0.0, 40.0}, {1.0, 20.0}, {2.0, 0.0}});
    bench.add_cycle(earlier, {{0.0, 0.0}, {1.0, 20.0}, {2.0, 40.0}});
    QCOMPARE(TestStation::all_instances, (QList<TestStation*>{earlier, later}));
    bench.window->slot_refresh_charts();
    bench.settle();
    const QPoint crossing = pixel_of(falling->voltage_vs_amphours, 1);
    bench.hover(bench.upper, crossing);
    bench.window->slot_refresh_charts();
    const QImage image = bench.shown(bench.upper);
    QCOMPARE(bench.upper->toolTip(), QString("Station 5:1\n1005\n1 Ah, 20 V"));
    QCOMPARE(image.pixelColor(crossing + QPoint(0, 2)), Colors::green);
}

void HoverTest::both_charts_keep_their_own_tooltip()
{
    ChartWindow bench;
    const TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    bench.upper->repaint();
    bench.lower->repaint();
    bench.hover(bench.upper, pixel_of(cycle->voltage_vs_amphours, 1));
    bench.window->slot_refresh_charts();
    bench.settle();
    bench.hover(bench.lower, pixel_of(cycle->current_vs_amphours, 2));
    bench.window->slot_refresh_charts();
    bench.settle();
    QCOMPARE(bench.upper->toolTip(), QString("Station 4:1\n1004\n1 Ah, 41 V"));
    QCOMPARE(bench.lower->toolTip(), QString("Station 4:1\n1004\n2 Ah, 10 A"));
}

void HoverTest::a_station_closed_under_the_mouse_is_gone()
{
    ChartWindow bench;
    TestStation* staying = bench.add_station(4);
    TestStation* closing = bench.add_station(5);
    bench.add_cycle(staying, {{0.0, 1.0}});
    const TestCycle* cycle = bench.add_cycle(closing, CURVE);
    QVERIFY(bench.told_at(bench.upper, cycle->voltage_vs_amphours, 1).startsWith("Station 5:1\n"));
    bench.answers.click(QMessageBox::Ok);
    bench.window->slot_close_request(closing);
    bench.settle();
    QCOMPARE(bench.upper->toolTip(), QString("Station 4:1\n1004\n0 Ah, 1 V"));
    bench.answers.click(QMessageBox::Ok);
    bench.window->slot_close_request(staying);
    bench.settle();
    QCOMPARE(bench.upper->toolTip(), QString());
}

KEST_TEST(HoverTest)
#include "tst_hover.moc"
