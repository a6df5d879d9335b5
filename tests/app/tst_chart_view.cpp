#include "app/main_window.h"

#include "chart_window.h"
#include "charts/paint_box.h"
#include "charts/plot_text.h"
#include "common/colors.h"
#include "device/kestrometer.h"
#include "station/cycle_charts.h"
#include "station/test_station.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QtTest>

namespace
{
QStringList names_of(const QList<Series*>& series)
{
    QStringList names;
    for (const Series* one : series)
        names.append(one->name);
    return names;
}

/** What a box draws when it is asked to paint on another device. */
QStringList drawn_by(PaintBox* box)
{
    RecordingPaintDevice device(box->width(), box->height());
    QPainter painter(&device);
    emit box->sig_paint(&painter, box->rect());
    painter.end();
    return device.lines;
}

struct Shown
{
    char type;
    LineChart& chart;
    ChartStyle style;
    double interval;
};

/** The same step by step: ground, chart, and the names at the ends of lines. */
QStringList expected_drawing(const ChartWindow& bench, PaintBox* box, const Shown& shown)
{
    RecordingPaintDevice device(box->width(), box->height());
    QPainter painter(&device);
    painter.setBrush(QBrush(Qt::white));
    painter.drawRect(0, 0, box->width(), box->height());
    const QList<Series*> series = bench.window->get_series_list_to_plot(shown.type);
    const double dpi = QGuiApplication::primaryScreen()->physicalDotsPerInch();
    shown.chart.plot(series, &painter, box->rect(), dpi * 0.5, shown.style, shown.interval,
                     int(dpi * 0.015625), int(dpi), false, nullptr);
    for (const Series* one : series) {
        if (shown.style == DOTS || one->points.isEmpty())
            continue;
        painter.setPen(Qt::black);
        painter.setBrush(QBrush(Qt::white));
        const QPoint end = one->map_point(one->points.last());
        plot_text(&painter, one->name, 0, Qt::AlignCenter, Qt::AlignVCenter, true, end.x(),
                  end.y());
    }
    painter.end();
    return device.lines;
}
}  // namespace

/** The charts: what they plot, and when. */
class ChartViewTest : public QObject
{
    Q_OBJECT

private slots:
    void ticked_cycles_are_plotted_in_order();
    void names_follow_the_identity();
    void each_chart_has_its_own_curves();
    void a_chart_is_drawn_step_by_step_data();
    void a_chart_is_drawn_step_by_step();
    void an_unknown_choice_of_the_lower_chart_paints_nothing();
    void without_a_tick_frame_and_captions_remain();
    void an_unticked_cycle_does_not_widen_the_chart();
    void smoothing_repaints_its_chart_at_once();
    void the_resistance_chart_has_no_smoothing();

    void the_box_of_all_cycles_follows_the_cycles_data();
    void the_box_of_all_cycles_follows_the_cycles();
    void without_a_cycle_the_box_of_all_is_empty();
    void a_tick_changes_the_chart_at_once();
    void the_box_of_all_acts_at_once();
    void a_colour_changes_the_chart_at_once();
};

void ChartViewTest::ticked_cycles_are_plotted_in_order()
{
    ChartWindow bench;
    TestStation* second = bench.add_station(2);
    TestStation* first = bench.add_station(1);
    QVERIFY(bench.window->get_series_list_to_plot('V').isEmpty());
    TestCycle* c = bench.add_cycle(second, CURVE);
    TestCycle* a = bench.add_cycle(first, CURVE);
    TestCycle* b = bench.add_cycle(first, CURVE);
    bench.add_cycle(second, CURVE)->checkbox.setChecked(false);
    TestCycle* d = bench.add_cycle(second, CURVE);
    const QList<Series*> list = bench.window->get_series_list_to_plot('V');
    QCOMPARE(list, (QList<Series*>{&a->voltage_vs_amphours, &b->voltage_vs_amphours,
                                   &c->voltage_vs_amphours, &d->voltage_vs_amphours}));
    // The number is the cycle's place among all, ticked or not.
    QCOMPARE(names_of(list),
             (QStringList{"Station 1:1", "Station 1:2", "Station 2:1", "Station 2:3"}));
}

void ChartViewTest::names_follow_the_identity()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    bench.add_cycle(station, CURVE);
    bench.window->get_series_list_to_plot('I');
    station->kestrometer->id = 5;
    QCOMPARE(names_of(bench.window->get_series_list_to_plot('I')), QStringList{"Station 5:1"});
}

void ChartViewTest::each_chart_has_its_own_curves()
{
    ChartWindow bench;
    TestCycle* cycle = bench.add_cycle(bench.add_station(4), CURVE);
    const QPair<char, Series*> curves[] = {{'V', &cycle->voltage_vs_amphours},
                                           {'I', &cycle->current_vs_amphours},
                                           {'R', &cycle->internal_resistance}};
    for (const auto& [code, curve] : curves)
        QCOMPARE(bench.window->get_series_list_to_plot(code), QList<Series*>{curve});
}

void ChartViewTest::a_chart_is_drawn_step_by_step_data()
{
    QTest::addColumn<char>("type");
    QTest::addColumn<bool>("smoothed");
    QTest::newRow("voltage, smoothed") << 'V' << true;
    QTest::newRow("voltage, every sample") << 'V' << false;
    QTest::newRow("current, smoothed") << 'I' << true;
    QTest::newRow("current, every sample") << 'I' << false;
    QTest::newRow("resistance") << 'R' << true;
}

void ChartViewTest::a_chart_is_drawn_step_by_step()
{
    QFETCH(char, type);
    QFETCH(bool, smoothed);
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    QList<QPointF> many;
    for (int i = 0; i < 300; ++i)
        many.append({i * 0.01, 42.0 - i * 0.005});
    bench.add_cycle(station, many);
    bench.add_cycle(bench.add_station(5), CURVE);
    bench.add_cycle(station, {});
    station->color_combobox.setCurrentIndex(6);
    PaintBox* box = type == 'V' ? bench.upper : bench.lower;
    bench.widget<QCheckBox>("cbSmoothVoltageChart")->setChecked(smoothed);
    bench.widget<QCheckBox>("cbSmoothCurrentChart")->setChecked(smoothed);
    bench.widget<QComboBox>("cbBottomChart")->setCurrentText(type == 'R' ? "RBatt" : "Current");
    LineChart& chart = cycle_chart(type).chart;
    const ChartStyle style = type == 'R' ? DOTS : LINES;
    const QStringList expected =
        expected_drawing(bench, box, {type, chart, style, smoothed && type != 'R' ? 0.2 : 0.0});
    QCOMPARE(drawn_by(box), expected);
    QCOMPARE(expected.filter("Station 4:1").size(), type == 'R' ? 0 : 1);
    QCOMPARE(expected.filter("Station 4:2").size(), 0);
}

void ChartViewTest::an_unknown_choice_of_the_lower_chart_paints_nothing()
{
    const ChartWindow bench;
    auto* choice = bench.widget<QComboBox>("cbBottomChart");
    choice->addItem("Power");
    choice->setCurrentIndex(2);
    QCOMPARE(drawn_by(bench.lower), QStringList());
    QVERIFY(!bench.widget<QCheckBox>("cbSmoothCurrentChart")->isEnabled());
}

void ChartViewTest::without_a_tick_frame_and_captions_remain()
{
    ChartWindow bench;
    bench.add_cycle(bench.add_station(4), CURVE)->checkbox.setChecked(false);
    const QStringList drawn = drawn_by(bench.upper);
    QCOMPARE(drawn.filter("text ").size(), 3);
    QCOMPARE(drawn.filter(QRegularExpression("^(line|polyline|ellipse) ")).size(), 0);
    QCOMPARE(drawn.filter("rect ").size(), 3);
    const QImage image = bench.shown(bench.upper);
    QCOMPARE(image.pixelColor(image.width() / 2, image.height() / 2), QColor(Qt::white));
}

void ChartViewTest::an_unticked_cycle_does_not_widen_the_chart()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    bench.add_cycle(station, CURVE);
    TestCycle* wide = bench.add_cycle(station, {{0.0, 42.0}, {90.0, 10.0}});
    const Axis& axis = TestStation::voltage_vs_amphours_chart.bottom_axis;
    bench.upper->repaint();
    QVERIFY(axis.range.max >= 90.0);
    wide->checkbox.setChecked(false);
    bench.upper->repaint();
    QVERIFY(axis.range.max < 10.0);
}

void ChartViewTest::smoothing_repaints_its_chart_at_once()
{
    const ChartWindow bench;
    const PaintCounter upper(bench.upper);
    const PaintCounter lower(bench.lower);
    bench.widget<QCheckBox>("cbSmoothVoltageChart")->click();
    QVERIFY(!bench.widget<QCheckBox>("cbSmoothVoltageChart")->isChecked());
    QCOMPARE(upper.count, 1);
    QCOMPARE(lower.count, 0);
    bench.widget<QCheckBox>("cbSmoothCurrentChart")->click();
    QVERIFY(!bench.widget<QCheckBox>("cbSmoothCurrentChart")->isChecked());
    QCOMPARE(lower.count, 1);
}

void ChartViewTest::the_resistance_chart_has_no_smoothing()
{
    const ChartWindow bench;
    auto* choice = bench.widget<QComboBox>("cbBottomChart");
    auto* smooth = bench.widget<QCheckBox>("cbSmoothCurrentChart");
    for (const bool ticked : {true, false}) {
        smooth->setChecked(ticked);
        const PaintCounter lower(bench.lower);
        QTest::keyClick(choice, Qt::Key_Down);
        QCOMPARE(choice->currentText(), QString("RBatt"));
        QCOMPARE(lower.count, 1);
        QVERIFY(!smooth->isEnabled());
        QCOMPARE(smooth->isChecked(), ticked);
        QTest::keyClick(choice, Qt::Key_Up);
        QCOMPARE(lower.count, 2);
        QVERIFY(smooth->isEnabled());
        QCOMPARE(smooth->isChecked(), ticked);
    }
}

void ChartViewTest::the_box_of_all_cycles_follows_the_cycles_data()
{
    QTest::addColumn<QList<Qt::CheckState>>("ticks");
    QTest::addColumn<Qt::CheckState>("all");
    using Ticks = QList<Qt::CheckState>;
    QTest::newRow("all") << Ticks{Qt::Checked, Qt::Checked} << Qt::Checked;
    QTest::newRow("some") << Ticks{Qt::Unchecked, Qt::Checked} << Qt::PartiallyChecked;
    QTest::newRow("none") << Ticks{Qt::Unchecked, Qt::Unchecked} << Qt::Unchecked;
    QTest::newRow("the only one") << Ticks{Qt::Checked} << Qt::Checked;
}

void ChartViewTest::the_box_of_all_cycles_follows_the_cycles()
{
    QFETCH(QList<Qt::CheckState>, ticks);
    QFETCH(Qt::CheckState, all);
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    for (const Qt::CheckState tick : qAsConst(ticks))
        bench.add_cycle(station, CURVE)->checkbox.setCheckState(tick);
    for (const Qt::CheckState before : {Qt::Unchecked, Qt::PartiallyChecked, Qt::Checked}) {
        station->all_cycles_checkbox.setCheckState(before);
        bench.window->slot_refresh_charts();
        QCOMPARE(station->all_cycles_checkbox.checkState(), all);
    }
}

void ChartViewTest::without_a_cycle_the_box_of_all_is_empty()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    QCOMPARE(station->cycles.size(), 0);
    bench.window->slot_refresh_charts();
    QCOMPARE(station->all_cycles_checkbox.checkState(), Qt::Unchecked);
}

void ChartViewTest::a_tick_changes_the_chart_at_once()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    bench.add_cycle(station, CURVE);
    TestCycle* cycle = bench.add_cycle(station, CURVE);
    // Now, so that no control on the chart is painted for having lost it.
    cycle->checkbox.setFocus();
    bench.settle();
    const PaintCounter upper(bench.upper);
    QTest::mouseClick(&cycle->checkbox, Qt::LeftButton, {},
                      QPoint(8, cycle->checkbox.height() / 2));
    QVERIFY(!cycle->checkbox.isChecked());
    QCOMPARE(station->all_cycles_checkbox.checkState(), Qt::PartiallyChecked);
    bench.settle();
    QCOMPARE(upper.count, 1);
}

void ChartViewTest::the_box_of_all_acts_at_once()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    TestCycle* cycle = bench.add_cycle(station, CURVE);
    QCheckBox& all = station->all_cycles_checkbox;
    all.setFocus();
    for (const Qt::CheckState expected : {Qt::Unchecked, Qt::Checked, Qt::Unchecked}) {
        bench.settle();
        const PaintCounter upper(bench.upper);
        QTest::mouseClick(&all, Qt::LeftButton, {}, QPoint(8, all.height() / 2));
        // To the operator it has two states: the refresh turns partial into what the cycles say.
        QCOMPARE(all.checkState(), expected);
        QCOMPARE(cycle->checkbox.checkState(), expected);
        bench.settle();
        QCOMPARE(upper.count, 1);
    }
}

void ChartViewTest::a_colour_changes_the_chart_at_once()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    bench.add_cycle(station, CURVE);
    bench.settle();
    const PaintCounter upper(bench.upper);
    const PaintCounter lower(bench.lower);
    QTest::keyClick(&station->color_combobox, Qt::Key_Down);
    QCOMPARE(station->color, Colors::brown);
    bench.settle();
    QCOMPARE(upper.count, 1);
    QCOMPARE(lower.count, 1);
}

KEST_TEST(ChartViewTest)
#include "tst_chart_view.moc"
