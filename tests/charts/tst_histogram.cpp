#include "charts/histogram.h"
#include "expected_drawing.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QFontInfo>
#include <QPainter>
#include <QtTest>

#include <memory>
#include <vector>

class HistogramTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_histogram_has_its_pens_fonts_and_axes();
    void a_fresh_series_has_its_pen_and_brush();
    void adding_a_value_widens_the_axis();
    void the_first_value_is_never_counted();
    void values_without_a_bin_are_not_counted();
    void bars_share_each_bin_data();
    void bars_share_each_bin();
    void empty_bins_leave_no_rectangle();
    void one_value_draws_no_bar();
    void the_axes_fit_the_rectangle_and_whole_bins();
    void without_series_there_are_frame_tick_and_caption();
    void the_value_axis_has_its_caption_near_the_device_s_top();
    void bars_far_away_are_drawn_without_overflow();
    void drawing_again_gives_the_same();
    void drawings_are_as_recorded();
    void the_look_is_as_expected();
    void odd_values_neither_crash_nor_hang_data();
    void odd_values_neither_crash_nor_hang();
};

namespace
{

const QRect RECT(60, 40, 400, 200);

struct Bench
{
    Bench()
    {
        histogram.label_font = pinned_font(8);
    }

    HistogramSeries& add(const QString& name, const QVector<double>& values)
    {
        owned.emplace_back(histogram.add_series(name));
        for (const double value : values)
            owned.back()->add(value);
        return *owned.back();
    }

    const RecordingPaintDevice& record()
    {
        device = std::make_unique<RecordingPaintDevice>(500, 300);
        QPainter painter(device.get());
        painter.setBrush(Qt::white);
        histogram.plot(&painter, RECT);
        painter.end();
        return *device;
    }

    Histogram histogram;
    std::unique_ptr<RecordingPaintDevice> device;
    std::vector<std::unique_ptr<HistogramSeries>> owned;
};

void two_series(Bench& bench)
{
    bench.add("first", {0.5, 0.5, 1.5, 1.25, 3.75});
    bench.add("second", {0.5, 1.5, 3.5, 3.5, 3.5}).brush = QBrush(Qt::red);
}

}  // namespace

void HistogramTest::a_fresh_histogram_has_its_pens_fonts_and_axes()
{
    const Histogram histogram;
    QCOMPARE(histogram.font_family, QString("Helvetica"));
    QCOMPARE(histogram.label_font.pointSize(), 8);
    QCOMPARE(histogram.caption_font.pointSize(), 10);
    const auto pen = [](const QColor& colour, double width) {
        return QPen(QBrush(colour), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    };
    QCOMPARE(histogram.text_pen, pen(Qt::black, 0.0));
    QCOMPARE(histogram.frame_pen, pen(Qt::black, 1.0));
    QCOMPARE(histogram.grid_pen, pen(Qt::lightGray, 0.0));
    QCOMPARE(histogram.bin_width, 1.0);
    QCOMPARE(histogram.frequency_step, 1.0);
    QCOMPARE(histogram.x_axis.side, BOTTOM);
    QCOMPARE(histogram.x_axis.num_decimals, 0);
    QVERIFY(histogram.x_axis.caption.isEmpty());
    QCOMPARE(histogram.y_axis.side, LEFT);
    QCOMPARE(histogram.y_axis.num_decimals, 0);
    QCOMPARE(histogram.y_axis.caption, QString("Frequency"));
}

void HistogramTest::a_fresh_series_has_its_pen_and_brush()
{
    Bench bench;
    const HistogramSeries& series = bench.add("name", {});
    QCOMPARE(series.pen, QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    QCOMPARE(series.brush, QBrush(Qt::cyan, Qt::SolidPattern));
    QCOMPARE(series.name, QString("name"));
    QCOMPARE(series.x_axis, &bench.histogram.x_axis);
    QCOMPARE(series.y_axis, &bench.histogram.y_axis);
    QCOMPARE(bench.histogram.series.size(), 1);
}

void HistogramTest::adding_a_value_widens_the_axis()
{
    Bench bench;
    const HistogramSeries& series = bench.add("", {2.5, -1.0});
    QCOMPARE(series.values, QList<double>({2.5, -1.0}));
    QCOMPARE(bench.histogram.x_axis.range.min, -1.0);
    QCOMPARE(bench.histogram.x_axis.range.max, 2.5);
}

void HistogramTest::the_first_value_is_never_counted()
{
    Bench bench;
    HistogramSeries& series = bench.add("", {0.5, 0.75, 2.5, 2.75});
    series.populate_bins(1.0);
    QCOMPARE(series.bins, QList<int>({1, 0, 2}));
    series.populate_bins(0.5);
    QCOMPARE(series.bins, QList<int>({0, 1, 0, 0, 0, 2}));
}

void HistogramTest::values_without_a_bin_are_not_counted()
{
    Bench bench;
    HistogramSeries& series = bench.add("", {0.5, -3.0, 3.0, 1.5});
    series.populate_bins(1.0);
    QCOMPARE(series.bins, QList<int>({0, 1, 0}));
}

void HistogramTest::bars_share_each_bin_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("bars");
    QTest::newRow("alone") << 0 << 1 << QStringList({"0,50 100x50", "200,0 100x100"});
    QTest::newRow("left half") << 0 << 2 << QStringList({"0,50 50x50", "200,0 50x100"});
    QTest::newRow("right half") << 1 << 2 << QStringList({"50,50 50x50", "250,0 50x100"});
}

void HistogramTest::bars_share_each_bin()
{
    QFETCH(int, index);
    QFETCH(int, count);
    Bench bench;
    HistogramSeries& series = bench.add("", {0.5, 0.75, 2.5, 2.75});
    Axis& x = bench.histogram.x_axis;
    Axis& y = bench.histogram.y_axis;
    x.range.include(0.0);
    x.range.include(3.0);
    x.length = 300;
    y.range.include(0.0);
    y.range.include(2.0);
    y.origin = 100;
    y.length = 100;
    series.populate_bins(1.0);
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    series.plot(&painter, 1.0, index, count);
    painter.end();
    QTEST(device.drawn("rect"), "bars");
    QCOMPARE(device.drawn("brush"), QStringList("#00ffff style 1"));
}

void HistogramTest::empty_bins_leave_no_rectangle()
{
    Bench bench;
    bench.add("", {0.5, 0.5, 9.5});
    const QStringList rects = bench.record().drawn("rect");
    QCOMPARE(rects.size(), 4);  // frame, two bars, legend
}

void HistogramTest::one_value_draws_no_bar()
{
    Bench bench;
    const HistogramSeries& series = bench.add("", {4.5});
    const RecordingPaintDevice& device = bench.record();
    QCOMPARE(series.bins, QList<int>({0, 0, 0, 0, 0}));
    QCOMPARE(device.drawn("rect").size(), 2);  // frame, legend
    QCOMPARE(bench.histogram.x_axis.range.min, 4.0);
    QCOMPARE(bench.histogram.x_axis.range.max, 5.0);
}

void HistogramTest::the_axes_fit_the_rectangle_and_whole_bins()
{
    Bench bench;
    bench.histogram.frequency_step = 2.0;
    bench.add("", {-1.5, 0.5, 0.5, 0.5, 2.25});
    bench.record();
    const Histogram& histogram = bench.histogram;
    QCOMPARE(histogram.first_bin, -2);
    QCOMPARE(histogram.last_bin, 3);
    QCOMPARE(histogram.x_axis.range.min, -2.0);
    QCOMPARE(histogram.x_axis.range.max, 3.0);
    QCOMPARE(histogram.x_axis.origin, RECT.left());
    QCOMPARE(histogram.x_axis.length, RECT.width());
    QCOMPARE(histogram.y_axis.range.min, 0.0);
    QCOMPARE(histogram.y_axis.range.max, 4.0);
    QCOMPARE(histogram.y_axis.origin, RECT.bottom());
    QCOMPARE(histogram.y_axis.length, RECT.height());
}

void HistogramTest::without_series_there_are_frame_tick_and_caption()
{
    Bench bench;
    const RecordingPaintDevice& device = bench.record();
    QCOMPARE(device.drawn("rect"), QStringList("60,40 400x200"));
    QCOMPARE(device.drawn("line"), QStringList("60,239 55,239"));
    const QStringList texts = device.drawn("text");
    QCOMPARE(texts.size(), 2);
    QVERIFY(texts.at(0).endsWith(" 0"));
    QVERIFY(texts.at(1).endsWith(" Frequency"));
}

void HistogramTest::the_value_axis_has_its_caption_near_the_device_s_top()
{
    Bench bench;
    bench.histogram.x_axis.caption = "Ah";
    const QStringList places = bench.record().drawn("transform");
    // A line of 11 pixels above the third one, in the middle of 60..459.
    QCOMPARE(places.last(), QString("1 0 0 1 at 259,22"));
}

void HistogramTest::bars_far_away_are_drawn_without_overflow()
{
    Bench bench;
    HistogramSeries& series = bench.add("", {});
    series.bins = {0, 1};
    Axis& x = bench.histogram.x_axis;
    Axis& y = bench.histogram.y_axis;
    x.range = Interval();
    x.range.include(1.5);
    x.range.include(1.5 + 1e-12);
    y.range.include(1.0);
    y.range.include(1.0 + 1e-12);
    x.length = 300;
    y.length = 100;
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    series.plot(&painter, 1.0, 0, 1);
    painter.end();
    QCOMPARE(device.drawn("rect"), QStringList("-536870912,0 1073741824x536870912"));
}

void HistogramTest::drawing_again_gives_the_same()
{
    Bench bench;
    bench.record();
    two_series(bench);
    const QStringList first = bench.record().lines;
    QCOMPARE(bench.record().lines, first);
}

void HistogramTest::drawings_are_as_recorded()
{
    Bench bench;
    two_series(bench);
    const QString difference = difference_to_file(bench.record().lines, "histogram.txt");
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void HistogramTest::the_look_is_as_expected()
{
    Bench bench;
    two_series(bench);
    QImage image(500, 300, QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(3780);
    image.setDotsPerMeterY(3780);
    image.fill(Qt::white);
    QPainter painter(&image);
    bench.histogram.plot(&painter, RECT);
    painter.end();
    const QString difference = difference_to_image(image, "histogram.png");
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void HistogramTest::odd_values_neither_crash_nor_hang_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::addColumn<double>("bin_width");
    QTest::addColumn<double>("frequency_step");
    const double nan = qQNaN();
    const QVector<double> plain{1.0, 2.0, 3.0, 3.5};
    QTest::newRow("NaN") << QVector<double>{nan, nan} << 1.0 << 1.0;
    QTest::newRow("infinite") << QVector<double>{0.0, qInf(), -qInf()} << 1.0 << 1.0;
    QTest::newRow("huge") << QVector<double>{0.0, 1e300, -1e300} << 1.0 << 1.0;
    QTest::newRow("more bins than pixels") << QVector<double>{0.0, 1e8} << 1.0 << 1.0;
    QTest::newRow("negative only") << QVector<double>{-5.0, -2.0} << 1.0 << 1.0;
    QTest::newRow("no bin width") << plain << 0.0 << 1.0;
    QTest::newRow("negative bin width") << plain << -1.0 << 1.0;
    QTest::newRow("NaN as bin width") << plain << nan << 1.0;
    QTest::newRow("no step") << plain << 1.0 << 0.0;
    QTest::newRow("negative step") << plain << 1.0 << -1.0;
    QTest::newRow("tiny step") << plain << 1.0 << 1e-300;
    QTest::newRow("infinite step") << plain << 1.0 << qInf();
}

void HistogramTest::odd_values_neither_crash_nor_hang()
{
    QFETCH(QVector<double>, values);
    QFETCH(double, bin_width);
    QFETCH(double, frequency_step);
    Bench bench;
    bench.histogram.bin_width = bin_width;
    bench.histogram.frequency_step = frequency_step;
    bench.add("odd", values);
    QVERIFY(bench.record().lines.size() < 1000);
    QVERIFY(!bench.record().drawn("text").isEmpty());
}

KEST_TEST(HistogramTest)
#include "tst_histogram.moc"
