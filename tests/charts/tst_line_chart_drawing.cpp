#include "chart_scenes.h"
#include "expected_drawing.h"
#include "support/test_program.h"

#include <QPainter>
#include <QPicture>
#include <QtTest>

class LineChartDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void drawings_are_as_recorded_data();
    void drawings_are_as_recorded();
    void the_look_is_as_expected_data();
    void the_look_is_as_expected();
    void a_moved_label_is_noticed();
    void pixels_are_those_without_the_raster_clip();
    void odd_data_and_rectangles_neither_crash_nor_hang_data();
    void odd_data_and_rectangles_neither_crash_nor_hang();
};

Q_DECLARE_METATYPE(Scene)

void LineChartDrawingTest::drawings_are_as_recorded_data()
{
    QTest::addColumn<Scene>("set_up");
    for (const NamedScene& scene : SCENES)
        QTest::newRow(scene.name) << scene.set_up;
}

void LineChartDrawingTest::drawings_are_as_recorded()
{
    QFETCH(Scene, set_up);
    ChartBench bench;
    set_up(bench);
    const QRect rect = bench.print ? QRect(100, 200, 3600, 1800) : RECT;
    const RecordingPaintDevice& device = bench.record(rect);
    const QString name = QString(QTest::currentDataTag()) + ".txt";
    const QString difference = difference_to_file(device.lines, name);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void LineChartDrawingTest::the_look_is_as_expected_data()
{
    QTest::addColumn<Scene>("set_up");
    for (const NamedScene& scene : SCENES) {
        if (scene.set_up == many || scene.set_up == zoomed || scene.set_up == twin_axes ||
            scene.set_up == dots)
            QTest::newRow(scene.name) << scene.set_up;
    }
}

void LineChartDrawingTest::the_look_is_as_expected()
{
    QFETCH(Scene, set_up);
    ChartBench bench;
    set_up(bench);
    const QString name = QString(QTest::currentDataTag()) + ".png";
    const QString difference = difference_to_image(bench.image(), name);
    QVERIFY2(difference.isEmpty(), qPrintable(difference));
}

void LineChartDrawingTest::a_moved_label_is_noticed()
{
    ChartBench bench;
    one(bench);
    const QImage image = bench.image();
    QCOMPARE(differing_pixels(image, image), 0);

    const int x = bench.chart.left_axis.origin;
    const QRect plot_area = plot_area_of(bench.chart);
    QVERIFY(x > 0);
    const QRect label(plot_area.left() - 24, plot_area.top() - 8, 20, 16);
    QImage moved = image;
    QPainter painter(&moved);
    painter.fillRect(label, Qt::white);
    painter.drawImage(label.topLeft() + QPoint(0, 1), image, label);
    painter.end();
    QVERIFY(differing_pixels(image, moved) > TOLERATED_PIXELS);
}

void LineChartDrawingTest::pixels_are_those_without_the_raster_clip()
{
    ChartBench bench;
    many(bench);
    const QImage image = bench.image();

    // A picture is no raster: it records the drawing without that clip, and gives it back.
    QPicture picture;
    QPainter recorder(&picture);
    recorder.setBrush(Qt::white);
    bench.plot(&recorder);
    recorder.end();
    QImage other(image.size(), image.format());
    other.setDotsPerMeterX(3780);
    other.setDotsPerMeterY(3780);
    other.fill(Qt::white);
    QPainter painter(&other);
    painter.drawPicture(0, 0, picture);
    painter.end();
    QCOMPARE(image, other);
}

void LineChartDrawingTest::odd_data_and_rectangles_neither_crash_nor_hang_data()
{
    QTest::addColumn<QVector<QPointF>>("points");
    QTest::addColumn<QRect>("rect");
    const double inf = qInf();
    const double nan = qQNaN();
    const QVector<QPointF> plain{{0.0, 1.0}, {1.0, 2.0}, {2.0, 1.0}};
    QTest::newRow("all NaN") << QVector<QPointF>{{nan, nan}, {nan, nan}} << RECT;
    QTest::newRow("infinite x") << QVector<QPointF>{{0.0, 1.0}, {inf, 2.0}} << RECT;
    QTest::newRow("infinite y") << QVector<QPointF>{{0.0, -inf}, {1.0, inf}} << RECT;
    QTest::newRow("huge") << QVector<QPointF>{{0.0, -1e308}, {1e308, 1e308}} << RECT;
    QTest::newRow("tiny") << QVector<QPointF>{{0.0, 0.0}, {5e-324, 5e-324}} << RECT;
    QTest::newRow("tiny span far out")
        << QVector<QPointF>{{1e15, 1e15}, {1e15 + 0.25, 1e15 + 0.125}} << RECT;
    QTest::newRow("one value") << QVector<QPointF>{{0.0, 0.0}, {0.0, 0.0}} << RECT;
    QTest::newRow("unsorted") << QVector<QPointF>{{5.0, 1.0}, {-3.0, 2.0}, {1.0, 0.0}} << RECT;
    QTest::newRow("no room at all") << plain << QRect(0, 0, 0, 0);
    QTest::newRow("one pixel") << plain << QRect(0, 0, 1, 1);
    QTest::newRow("room for the margins only") << plain << QRect(0, 0, 80, 90);
    QTest::newRow("narrow") << plain << QRect(0, 0, 20, 300);
    QTest::newRow("flat") << plain << QRect(0, 0, 600, 20);
    QTest::newRow("negative") << plain << QRect(100, 100, -50, -50);
}

void LineChartDrawingTest::odd_data_and_rectangles_neither_crash_nor_hang()
{
    QFETCH(QVector<QPointF>, points);
    QFETCH(QRect, rect);
    ZoomInterval far_outside;
    far_outside.x.include(1e12);
    far_outside.x.include(1e12 + 1.0);
    far_outside.y.include(-1e300);
    far_outside.y.include(-1e299);
    for (const bool forced : {true, false}) {
        for (const ChartStyle style : {LINES, DOTS}) {
            for (ZoomInterval* const zoom : {static_cast<ZoomInterval*>(nullptr), &far_outside}) {
                ChartBench bench;
                bench.style = style;
                bench.interval = 0.2;
                bench.zoom = zoom;
                if (!forced) {
                    bench.chart.bottom_axis.forced_range.clear();
                    bench.chart.left_axis.forced_range.clear();
                }
                Series& odd = bench.add(Qt::red);
                for (const QPointF& point : points)
                    odd.add(point.x(), point.y());
                Series& twin = bench.add(Qt::blue);
                twin.set_axes(&bench.chart.top_axis, &bench.chart.right_axis);
                twin.add(0.0, 1.0);
                twin.add(1.0, 2.0);
                bench.image(rect);
                QVERIFY(bench.record(rect).lines.size() < 10000);
            }
        }
    }
}

KEST_TEST(LineChartDrawingTest)
#include "tst_line_chart_drawing.moc"
