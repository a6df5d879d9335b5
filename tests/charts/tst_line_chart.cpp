#include "charts/line_chart.h"
#include "chart_scenes.h"
#include "expected_drawing.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QPainter>
#include <QtTest>

#include <cmath>
#include <memory>

/** Built before main, as the program's charts are: that must need no application object. */
static LineChart chart_before_main;

class LineChartTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_chart_has_its_pens_fonts_and_axes();
    void add_series_uses_the_default_axes_for_null();
    void ranges_cover_curves_and_forced_ends();
    void a_zoom_replaces_curves_and_forced_ends();
    void hidden_and_empty_series_leave_axes_out_of_use();
    void caption_sizes_measure_labels_and_titles();
    void series_without_axes_get_the_default_ones();
    void the_plot_area_leaves_room_for_captions_and_labels_data();
    void the_plot_area_leaves_room_for_captions_and_labels();
    void without_curves_only_frame_and_captions_are_drawn();
    void labels_stand_at_every_gridline();
    void a_zoom_is_widened_to_the_next_gridlines();
    void twin_axes_get_equal_interval_counts();
    void paper_has_pens_of_its_own();
    void the_painter_s_clip_gives_way_to_the_plot_area();
    void gridlines_have_the_label_font_by_themselves();
    void the_latest_layout_stays_in_the_axes();
    void all_series_can_be_locked();
};

namespace
{

QString rect_text(const QRect& rect)
{
    return QString("%1,%2 %3x%4")
        .arg(rect.left())
        .arg(rect.top())
        .arg(rect.width())
        .arg(rect.height());
}

}  // namespace

Q_DECLARE_METATYPE(Scene)

void LineChartTest::a_fresh_chart_has_its_pens_fonts_and_axes()
{
    const LineChart& chart = chart_before_main;
    const QPen black(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    const QPen gray(QBrush(Qt::lightGray), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    QCOMPARE(chart.text_pen, black);
    QCOMPARE(chart.frame_pen, black);
    QCOMPARE(chart.grid_pen, gray);
    QCOMPARE(chart.font_family, QString("Helvetica"));
    QCOMPARE(chart.label_font.family(), QString("Helvetica"));
    QCOMPARE(chart.label_font.pointSize(), 8);
    QCOMPARE(chart.label_font.weight(), int(QFont::Normal));
    QVERIFY(!chart.label_font.italic());
    QCOMPARE(chart.caption_font.family(), QString("Helvetica"));
    QCOMPARE(chart.caption_font.pointSize(), 10);
    QCOMPARE(chart.top_axis.side, TOP);
    QCOMPARE(chart.bottom_axis.side, BOTTOM);
    QCOMPARE(chart.left_axis.side, LEFT);
    QCOMPARE(chart.right_axis.side, RIGHT);
    const Axis* const order[] = {&chart.bottom_axis, &chart.top_axis, &chart.left_axis,
                                 &chart.right_axis};
    for (int i = 0; i < 4; ++i)
        QVERIFY(chart.axes[i] == order[i]);
    for (int i = 0; i < 2; ++i) {
        QVERIFY(chart.x_axes[i] == order[i]);
        QVERIFY(chart.y_axes[i] == order[i + 2]);
    }
}

void LineChartTest::add_series_uses_the_default_axes_for_null()
{
    LineChart chart;
    const std::unique_ptr<Series> plain(chart.add_series("plain", nullptr, nullptr));
    QCOMPARE(plain->name, QString("plain"));
    QCOMPARE(plain->x_axis, &chart.bottom_axis);
    QCOMPARE(plain->y_axis, &chart.left_axis);
    const std::unique_ptr<Series> other(
        chart.add_series("other", &chart.top_axis, &chart.right_axis));
    QCOMPARE(other->x_axis, &chart.top_axis);
    QCOMPARE(other->y_axis, &chart.right_axis);
}

void LineChartTest::ranges_cover_curves_and_forced_ends()
{
    ChartBench bench;
    Series& a = bench.add();
    a.set_axes(&bench.chart.bottom_axis, &bench.chart.left_axis);
    a.add(1.0, 5.0);
    a.add(3.0, 7.0);
    Series& b = bench.add();
    b.set_axes(&bench.chart.bottom_axis, &bench.chart.left_axis);
    b.add(2.0, -4.0);
    bench.chart.left_axis.forced_range.max = 20.0;
    bench.chart.calc_axis_min_max(bench.series, nullptr);
    QCOMPARE(bench.chart.bottom_axis.range.min, 0.0);
    QCOMPARE(bench.chart.bottom_axis.range.max, 3.0);
    QCOMPARE(bench.chart.left_axis.range.min, -4.0);
    QCOMPARE(bench.chart.left_axis.range.max, 20.0);
    QVERIFY(bench.chart.bottom_axis.in_use);
    QVERIFY(bench.chart.left_axis.in_use);
    QVERIFY(!bench.chart.top_axis.in_use);
    QVERIFY(!bench.chart.right_axis.in_use);
    QVERIFY(qIsInf(bench.chart.top_axis.range.min));
}

void LineChartTest::a_zoom_replaces_curves_and_forced_ends()
{
    ChartBench bench;
    zoomed(bench);
    for (Series* const series : bench.series)
        series->set_axes(&bench.chart.bottom_axis, &bench.chart.left_axis);
    bench.chart.left_axis.forced_range.max = 100.0;
    bench.chart.calc_axis_min_max(bench.series, bench.zoom);
    QCOMPARE(bench.chart.bottom_axis.range.min, 1.1);
    QCOMPARE(bench.chart.bottom_axis.range.max, 2.3);
    QCOMPARE(bench.chart.left_axis.range.min, 22.2);
    QCOMPARE(bench.chart.left_axis.range.max, 25.1);
}

void LineChartTest::hidden_and_empty_series_leave_axes_out_of_use()
{
    ChartBench bench;
    bench.add();
    bench.add().add(1.0, 2.0);
    bench.series.last()->visible = false;
    for (Series* const series : bench.series)
        series->set_axes(&bench.chart.bottom_axis, &bench.chart.left_axis);
    bench.chart.calc_axis_min_max(bench.series, nullptr);
    for (const Axis* const axis : bench.chart.axes)
        QVERIFY(!axis->in_use);
    QCOMPARE(bench.chart.left_axis.range.min, 0.0);
    QCOMPARE(bench.chart.left_axis.range.max, 0.0);
}

void LineChartTest::caption_sizes_measure_labels_and_titles()
{
    ChartBench bench;
    twin_axes(bench);
    bench.record();
    RecordingPaintDevice device(600, 300);
    QPainter painter(&device);
    const QFontMetrics metrics(pinned_font(8), &device);
    int left = -1;
    int top = -1;
    int right = -1;
    int bottom = -1;
    bench.chart.get_max_caption_sizes(&painter, left, top, right, bottom);
    QCOMPARE(left, metrics.horizontalAdvance("30"));
    QCOMPARE(right, metrics.horizontalAdvance("5.2"));
    QCOMPARE(top, metrics.height());
    QCOMPARE(bottom, metrics.height());
    QCOMPARE(painter.font().pointSize(), 8);

    bench.chart.top_axis.caption.clear();
    bench.chart.bottom_axis.caption.clear();
    bench.chart.left_axis.in_use = false;
    bench.chart.right_axis.in_use = false;
    bench.chart.get_max_caption_sizes(&painter, left, top, right, bottom);
    QCOMPARE(left, 0);
    QCOMPARE(top, 0);
    QCOMPARE(right, 0);
    QCOMPARE(bottom, 0);
}

void LineChartTest::series_without_axes_get_the_default_ones()
{
    ChartBench bench;
    one(bench);
    Series& right = bench.add();
    right.set_axes(&bench.chart.top_axis, &bench.chart.right_axis);
    bench.record();
    QCOMPARE(bench.series.at(0)->x_axis, &bench.chart.bottom_axis);
    QCOMPARE(bench.series.at(0)->y_axis, &bench.chart.left_axis);
    QCOMPARE(right.x_axis, &bench.chart.top_axis);
    QCOMPARE(right.y_axis, &bench.chart.right_axis);
}

void LineChartTest::the_plot_area_leaves_room_for_captions_and_labels_data()
{
    QTest::addColumn<Scene>("set_up");
    QTest::addColumn<QString>("left_label");
    QTest::addColumn<QString>("right_label");
    QTest::newRow("three captions") << Scene(one) << "25"
                                    << "";
    QTest::newRow("no captions") << Scene(no_captions) << "25"
                                 << "";
    QTest::newRow("four captions") << Scene(twin_axes) << "30"
                                   << "5.2";
    QTest::newRow("no series") << Scene(no_series) << ""
                               << "";
}

void LineChartTest::the_plot_area_leaves_room_for_captions_and_labels()
{
    QFETCH(Scene, set_up);
    QFETCH(QString, left_label);
    QFETCH(QString, right_label);
    ChartBench bench;
    set_up(bench);
    const QRect rect(5, 7, 600, 300);
    const RecordingPaintDevice& device = bench.record(rect);

    const QFontMetrics metrics(pinned_font(8), const_cast<RecordingPaintDevice*>(&device));
    const int px = 11;
    const LineChart& chart = bench.chart;
    const auto margin = [px](const Axis& axis) {
        return axis.caption.isEmpty() ? 2 * px : 3 * px;
    };
    const auto line = [&metrics](const Axis& axis) {
        return axis.caption.isEmpty() ? 0 : metrics.height();
    };
    const QRect expected =
        rect.adjusted(margin(chart.left_axis) + metrics.horizontalAdvance(left_label),
                      margin(chart.top_axis) + line(chart.top_axis),
                      -margin(chart.right_axis) - metrics.horizontalAdvance(right_label),
                      -margin(chart.bottom_axis) - line(chart.bottom_axis));
    QCOMPARE(device.drawn("rect"), QStringList({rect_text(expected), rect_text(expected)}));
    QCOMPARE(plot_area_of(chart), expected);
}

void LineChartTest::without_curves_only_frame_and_captions_are_drawn()
{
    ChartBench bench;
    bench.add();
    const RecordingPaintDevice& device = bench.record();
    QCOMPARE(device.drawn("line"), QStringList());
    QCOMPARE(device.drawn("polyline"), QStringList());
    QCOMPARE(device.drawn("rect").size(), 2);
    QCOMPARE(device.drawn("text").size(), 3);
    for (const Axis* const axis : bench.chart.axes)
        QVERIFY(!axis->in_use);
}

void LineChartTest::labels_stand_at_every_gridline()
{
    ChartBench bench;
    one(bench);
    const RecordingPaintDevice& device = bench.record();
    const LineChart& chart = bench.chart;
    QStringList labels;
    for (const QString& text : device.drawn("text"))
        labels << text.section(' ', 1);
    QStringList expected;
    for (const Axis* const axis : {&chart.bottom_axis, &chart.left_axis}) {
        for (int i = axis->min_gridline_index(); i <= axis->max_gridline_index(); ++i)
            expected << QString::number(axis->gridline_spacing * i, 'f', axis->num_decimals);
    }
    QCOMPARE(expected.first(), QString("0.0"));
    QCOMPARE(expected.last(), QString("25"));
    expected << "Amp-Hours (Ah)"
             << "Voltage vs. Amp-Hours"
             << "Voltage (V)";
    QCOMPARE(labels, expected);
    QCOMPARE(device.drawn("line").size(),
             chart.bottom_axis.num_intervals() + chart.left_axis.num_intervals() + 2);
}

void LineChartTest::a_zoom_is_widened_to_the_next_gridlines()
{
    ChartBench bench;
    zoomed(bench);
    bench.record();
    for (const Axis* const axis : {&bench.chart.bottom_axis, &bench.chart.left_axis}) {
        const Interval& zoom = axis->side == BOTTOM ? bench.zoom->x : bench.zoom->y;
        const double spacing = axis->gridline_spacing;
        QVERIFY(axis->range.min <= zoom.min);
        QVERIFY(axis->range.max >= zoom.max);
        QVERIFY(axis->range.size() < zoom.size() + 3.0 * spacing);
        QCOMPARE(axis->range.min, axis->min_gridline_index() * spacing);
        QCOMPARE(axis->range.max, axis->max_gridline_index() * spacing);
        QVERIFY(axis->range.min > 0.0);  // the forced 0 is out of sight
    }
}

void LineChartTest::twin_axes_get_equal_interval_counts()
{
    ChartBench bench;
    twin_axes(bench);
    bench.record();
    const LineChart& chart = bench.chart;
    QCOMPARE(chart.right_axis.num_intervals(), chart.left_axis.num_intervals());
    QCOMPARE(chart.top_axis.num_intervals(), chart.bottom_axis.num_intervals());
    QCOMPARE(chart.right_axis.range.min, 4.0);
    QVERIFY(chart.right_axis.range.max > 5.125);
}

void LineChartTest::paper_has_pens_of_its_own()
{
    ChartBench bench;
    print_600(bench);
    const RecordingPaintDevice& device = bench.record(QRect(0, 0, 3600, 1800));
    const QString style = " style 1 cap 10 join 40";
    const QString vertical = "#f0f0f0 width 4.166666667" + style;
    const QString horizontal = "#f0f0f0 width 1" + style;
    const QString frame = "#000000 width 4" + style;
    const QString text = "#000000 width 1" + style;
    QStringList pens = device.drawn("pen");
    QCOMPARE(pens.takeFirst(), frame);
    QCOMPARE(pens.takeLast(), frame);
    QCOMPARE(pens.takeLast(), "#0000ff width 4.166666667" + style);
    pens.removeDuplicates();
    QCOMPARE(pens.mid(0, 3), QStringList({text, vertical, horizontal}));
}

void LineChartTest::the_painter_s_clip_gives_way_to_the_plot_area()
{
    ChartBench bench;
    one(bench);
    RecordingPaintDevice device(600, 300);
    QImage image(600, 300, QImage::Format_ARGB32_Premultiplied);
    for (QPaintDevice* const target :
         {static_cast<QPaintDevice*>(&device), static_cast<QPaintDevice*>(&image)}) {
        QPainter painter(target);
        painter.setClipRect(QRect(0, 0, 100, 50));
        bench.plot(&painter);
        QVERIFY(!painter.hasClipping());
        bench.plot(&painter);
        QVERIFY(!painter.hasClipping());
    }
    const QString plot_area = rect_text(plot_area_of(bench.chart));
    QCOMPARE(device.drawn("clip"),
             QStringList({"0,0 100x50", plot_area, "none", plot_area, "none"}));
}

void LineChartTest::gridlines_have_the_label_font_by_themselves()
{
    ChartBench bench;
    one(bench);
    bench.record();
    RecordingPaintDevice device(600, 300);
    QPainter painter(&device);
    painter.setFont(pinned_font(30));
    bench.chart.plot_gridlines(&painter, plot_area_of(bench.chart), 96, false);
    QCOMPARE(painter.font().pointSize(), 8);
}

void LineChartTest::the_latest_layout_stays_in_the_axes()
{
    ChartBench bench;
    one(bench);
    bench.record();
    const QRect plot_area = plot_area_of(bench.chart);
    QCOMPARE(bench.chart.bottom_axis.unmap_value(plot_area.left()), 0.0);
    QCOMPARE(bench.chart.left_axis.unmap_value(plot_area.bottom()), 0.0);
    QCOMPARE(bench.chart.left_axis.unmap_value(plot_area.top() - 1), 25.0);
}

void LineChartTest::all_series_can_be_locked()
{
    ChartBench bench;
    bench.add();
    bench.add();
    bench.chart.lock_all_series(bench.series);
    for (Series* const series : bench.series)
        QVERIFY(!series->mutex.tryLock());
    bench.chart.unlock_all_series(bench.series);
    for (Series* const series : bench.series) {
        QVERIFY(series->mutex.tryLock());
        series->mutex.unlock();
    }
}

KEST_TEST(LineChartTest)
#include "tst_line_chart.moc"
