#include "charts/expected_drawing.h"
#include "recorded_texts.h"
#include "report_page_bench.h"
#include "support/test_program.h"

#include <QFontInfo>
#include <QtTest>

#include <cmath>

/** The page as it is drawn, on a device of Letter size that writes down what it is asked for. */
class ReportPageTest : public QObject
{
    Q_OBJECT

private slots:
    void the_page_is_drawn_as_recorded();
    void elements_come_in_their_order();
    void the_header_image_stands_above_the_titles();
    void without_an_image_nothing_stands_in_its_place();
    void titles_are_centred_lines_of_16_points();
    void the_footer_names_the_version_in_the_charts_family();
    void curves_of_ticked_cycles_are_smoothed_and_others_left_out();
    void curves_have_the_colour_of_the_station();
    void dots_are_a_64th_of_an_inch();
    void bars_of_all_cycles_are_drawn_in_black();
    void without_a_tick_frames_and_bars_remain();
    void the_scale_takes_in_all_bars_and_stays();
    void an_earlier_scale_does_not_count();
    void the_charts_are_as_wide_as_the_page_allows();
    void a_test_without_cycles_is_a_page_too();
};

namespace
{
constexpr int CHART_HEIGHT = (6400 - 2100 - 600) / 2;

/** Lines from the top of one bar to its bottom: drawn downward, as no other line of the page is. */
QStringList bars_of(const ReportPageBench& bench, const RecordingPaintDevice& device)
{
    const QStringList lines = device.drawn("line");
    int count = 0;
    for (const ReportCycle& cycle : bench.report.cycles)
        count += cycle.internal_resistance->points.size();
    return lines.mid(lines.size() - count);
}
}  // namespace

void ReportPageTest::the_page_is_drawn_as_recorded()
{
    ReportPageBench bench;
    bench.report.header_image = QPixmap(240, 24);
    bench.add_cycle(2.4);
    bench.add_cycle(1.2, false);
    bench.add_cycle(0.1);
    bench.add_cycle(2.0);
    const QString difference = difference_to_file(bench.plot().lines, "report_page.txt");
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void ReportPageTest::elements_come_in_their_order()
{
    ReportPageBench bench;
    bench.report.header_image = QPixmap(240, 24);
    bench.add_cycle(1.0);
    const RecordingPaintDevice& device = bench.plot();
    QString kinds;
    for (const QString& line : device.lines) {
        const QString kind = line.section(' ', 0, 0);
        for (const char* const drawing : {"pixmap", "text", "line", "polyline", "ellipse", "rect"})
            if (kind == drawing)
                kinds += kind[0];
    }
    // Image, two titles, table, and at the end two bars and the footer.
    QVERIFY2(kinds.startsWith("ptt"
                              "llllllllll"
                              "ttttttttttt"
                              "r"),
             qPrintable(kinds));
    QVERIFY2(kinds.endsWith("eerllt"), qPrintable(kinds));
    QCOMPARE(kinds.count('r'), 4);
}

void ReportPageTest::the_header_image_stands_above_the_titles()
{
    ReportPageBench bench;
    bench.report.header_image = QPixmap(1000, 150);
    QCOMPARE(bench.plot().drawn("pixmap"), QStringList{"450,300 4000x600"});
}

void ReportPageTest::without_an_image_nothing_stands_in_its_place()
{
    ReportPageBench bench;
    const RecordingPaintDevice& device = bench.plot();
    QCOMPARE(device.drawn("pixmap"), QStringList());
    QCOMPARE(recorded_texts(device).first().anchor, QPointF(2450, 900));
}

void ReportPageTest::titles_are_centred_lines_of_16_points()
{
    ReportPageBench bench;
    bench.report.battery_name = "%1 of %2";
    const RecordingPaintDevice& device = bench.plot();
    const RecordedText title = recorded_text(device, "Battery Discharge Test Results");
    QCOMPARE(title.anchor, QPointF(2450, 900));
    QCOMPARE(title.font, QString("DejaVu Sans 16 points weight 50"));
    const RecordedText subtitle = recorded_text(device, "%1 of %2 SN: 1042");
    QCOMPARE(subtitle.anchor, QPointF(2450, 1200));
    QCOMPARE(subtitle.font, title.font);
    // No pen has been set: it is the painter's own.
    QCOMPARE(settings_at(device, "pen", "text ").first(), QString());
}

void ReportPageTest::the_footer_names_the_version_in_the_charts_family()
{
    ReportPageBench bench;
    bench.resistance_chart.caption_font.setItalic(true);
    const RecordedText footer = recorded_texts(bench.plot()).last();
    QCOMPARE(footer.text, QString("Software Version: v1.0.0b1, Apr 03 2020"));
    QCOMPARE(footer.anchor, QPointF(4600, 6100));
    QCOMPARE(footer.font, QString("DejaVu Sans 6 points weight 50 italic"));
}

void ReportPageTest::curves_of_ticked_cycles_are_smoothed_and_others_left_out()
{
    ReportPageBench bench;
    bench.add_cycle(2.0);
    bench.add_cycle(2.0, false);
    bench.add_cycle(3.0);
    const QStringList curves = bench.plot().drawn("polyline");
    QCOMPARE(curves.size(), 2);
    // The first and the last point, and a mean for every fifth of an amp-hour.
    QCOMPARE(curves[0].split(' ').size(), 2 + 10);
    QCOMPARE(curves[1].split(' ').size(), 2 + 15);
}

void ReportPageTest::curves_have_the_colour_of_the_station()
{
    ReportPageBench bench;
    Curves& curves = bench.add_cycle(1.0);
    curves.voltage.pen = QPen(Qt::blue);
    curves.resistance.pen = QPen(Qt::blue);
    const RecordingPaintDevice& device = bench.plot();
    const QString half_a_point = "#0000ff width 4.166666667 style 1 cap 10 join 40";
    QCOMPARE(settings_at(device, "pen", "polyline "), QStringList{half_a_point});
    QCOMPARE(settings_at(device, "pen", "ellipse "), QStringList({half_a_point, half_a_point}));
}

void ReportPageTest::dots_are_a_64th_of_an_inch()
{
    ReportPageBench bench;
    bench.add_cycle(1.0);
    const QStringList dots = bench.plot().drawn("ellipse");
    QCOMPARE(dots.size(), 2);
    for (const QString& dot : dots)
        QVERIFY(dot.endsWith(" 18x18"));
}

void ReportPageTest::bars_of_all_cycles_are_drawn_in_black()
{
    ReportPageBench bench;
    bench.add_cycle(1.0).resistance.pen = QPen(Qt::red);
    bench.add_cycle(2.0, false);
    const RecordingPaintDevice& device = bench.plot();
    const Axis& x = bench.resistance_chart.bottom_axis;
    const Axis& y = bench.resistance_chart.left_axis;
    QStringList expected;
    for (const std::unique_ptr<Curves>& curves : bench.owned) {
        for (const QPointF& reading : curves->resistance.points)
            expected << QString("%1,%2 %1,%3")
                            .arg(x.map_value(reading.x()))
                            .arg(y.map_value(reading.y() + 75.0))
                            .arg(y.map_value(reading.y() - 75.0));
    }
    QCOMPARE(expected.size(), 2 + 4);
    QCOMPARE(bars_of(bench, device), expected);
    const QStringList pens = settings_at(device, "pen", "line ");
    for (const QString& pen : pens.mid(pens.size() - 6))
        QCOMPARE(pen, QString("#000000 width 1 style 1 cap 10 join 40"));
    QCOMPARE(settings_at(device, "clip", "line ").last(), QString("none"));
}

void ReportPageTest::without_a_tick_frames_and_bars_remain()
{
    ReportPageBench bench;
    bench.add_cycle(1.0, false);
    const RecordingPaintDevice& device = bench.plot();
    QCOMPARE(device.drawn("rect").size(), 4);
    QCOMPARE(device.drawn("polyline"), QStringList());
    QCOMPARE(device.drawn("ellipse"), QStringList());
    QCOMPARE(device.drawn("line").size(), 7 + 2 + 2);
    QCOMPARE(bars_of(bench, device).size(), 2);
}

void ReportPageTest::the_scale_takes_in_all_bars_and_stays()
{
    ReportPageBench bench;
    bench.add_cycle(1.0);
    bench.add_cycle(1.0, false).resistance.add(0.9, 200.0);
    bench.plot();
    const Axis& axis = bench.resistance_chart.left_axis;
    QCOMPARE(axis.forced_range.max, 275.0);
    QCOMPARE(axis.forced_range.min, 0.0);
    QVERIFY(axis.range.max >= 275.0);
}

void ReportPageTest::an_earlier_scale_does_not_count()
{
    ReportPageBench bench;
    bench.resistance_chart.left_axis.forced_range.max = 1000.0;
    bench.add_cycle(0.4);
    bench.plot();
    QCOMPARE(bench.resistance_chart.left_axis.forced_range.max, 60.0 + 2.5 + 75.0);
    bench.report.cycles.clear();
    bench.plot();
    QCOMPARE(bench.resistance_chart.left_axis.forced_range.max, 0.0);
}

void ReportPageTest::the_charts_are_as_wide_as_the_page_allows()
{
    ReportPageBench bench;
    bench.add_cycle(1.0);
    const RecordingPaintDevice& device = bench.plot();
    const int px = QFontInfo(pinned_font(10)).pixelSize();
    QVERIFY(px > 0);
    // Captions stand in the middle of the chart's rectangle, at its very top and bottom.
    const QPointF upper = recorded_text(device, "Voltage").anchor;
    const QPointF lower = recorded_text(device, "Resistance").anchor;
    QCOMPARE(upper.x(), std::floor((300 + 4599) / 2.0));
    QCOMPARE(lower, upper + QPointF(0, CHART_HEIGHT));
    const QPointF upper_bottom = recorded_text(device, "Amp-Hours (Ah)").anchor;
    QCOMPARE((upper.y() - 2400), (2400 + CHART_HEIGHT - 1) - upper_bottom.y());
}

void ReportPageTest::a_test_without_cycles_is_a_page_too()
{
    ReportPageBench bench;
    const RecordingPaintDevice& device = bench.plot();
    QCOMPARE(device.drawn("rect").size(), 4);
    QCOMPARE(device.drawn("line").size(), 7 + 2);
    QCOMPARE(recorded_texts(device).size(), 2 + 5 + 4 + 1);
}

KEST_TEST(ReportPageTest)
#include "tst_report_page.moc"
