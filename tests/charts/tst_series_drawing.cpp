#include "charts/series.h"
#include "plain_axes.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QPainter>
#include <QtTest>

#include <limits>
#include <random>

class SeriesDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void curves_have_their_vertices_data();
    void curves_have_their_vertices();
    void curves_follow_the_plain_description_data();
    void curves_follow_the_plain_description();
    void an_empty_series_draws_nothing();
    void a_curve_is_one_polyline();
    void dots_ignore_the_averaging();
    void pens_depend_on_the_device_data();
    void pens_depend_on_the_device();
    void a_dot_is_a_disc_in_the_pens_colour();
    void a_dot_far_away_is_drawn_without_overflow();
    void far_vertices_end_on_pixels_too_data();
    void far_vertices_end_on_pixels_too();
};

namespace
{

/** What a curve asks of a device. */
struct Plot : PlainAxes
{
    void draw(Series& series, ChartStyle style, double interval, int dpi = 96, bool print = false)
    {
        series.set_axes(&x, &y);
        QPainter painter(&device);
        series.plot(&painter, style, interval, 2, dpi, print);
    }

    /** The vertices of the one polyline. */
    QString polyline() const
    {
        return device.drawn("polyline").value(0);
    }

    RecordingPaintDevice device{1200, 500};
};

/** The rule for curves, step by step, with a bucket that really holds its points. */
QPolygonF plain_vertices(const Series& series, double interval)
{
    QPolygonF output;
    if (interval > series.points.last().x()) {
        for (const QPointF& point : series.points)
            output.append(series.map_point(point));
        return output;
    }
    output.append(series.map_point(series.points.first()));
    QPolygonF bucket;
    double boundary = interval;
    for (const QPointF& point : series.points) {
        if (point.x() > boundary) {
            output.append(series.map_point(polyline_average(bucket)));
            bucket.clear();
            boundary += interval;
        }
        bucket.append(point);
    }
    output.append(series.map_point(polyline_average(bucket)));
    output.append(series.map_point(series.points.last()));
    return output;
}

QString text_of(const QPolygonF& polygon)
{
    QStringList corners;
    for (const QPointF& point : polygon)
        corners << QString("%1,%2").arg(qint64(point.x())).arg(qint64(point.y()));
    return corners.join(' ');
}

}  // namespace

void SeriesDrawingTest::curves_have_their_vertices_data()
{
    QTest::addColumn<Points>("points");
    QTest::addColumn<double>("interval");
    QTest::addColumn<QString>("vertices");
    const QString nan_vertex = "-2147483648,-2147483648 ";
    QTest::newRow("shorter than a bucket")
        << Points{{0.0, 1.0}, {0.1, 2.0}, {0.15, 1.0}} << 0.2 << "50,350 60,250 65,350";
    QTest::newRow("last x equal to the interval is one bucket")
        << Points{{0.0, 1.0}, {0.1, 2.0}, {0.2, 3.0}} << 0.2 << "50,350 60,250 70,150";
    QTest::newRow("first, means, last")
        << Points{{0.0, 1.0}, {0.1, 2.0}, {0.3, 3.0}, {0.4, 1.0}, {0.5, 2.0}} << 0.2
        << "50,350 55,300 85,250 100,250 100,250";
    QTest::newRow("a gap gives buckets of one until the boundary has caught up")
        << Points{{0.0, 1.0}, {2.0, 2.0}, {2.125, 2.0}, {2.25, 3.0}, {2.375, 3.0}} << 0.5
        << "50,350 50,350 250,250 262,250 275,150 287,150 287,150";
    QTest::newRow("one point at 0, smoothed, is one vertex and paints nothing")
        << Points{{0.0, 1.0}} << 0.2 << "";
    QTest::newRow("one point at 0, every sample")
        << Points{{0.0, 1.0}} << 0.0 << "50,350 50,350 50,350";
    QTest::newRow("every sample, the last one twice")
        << Points{{0.0, 1.0}, {1.0, 2.0}, {2.0, 3.0}} << 0.0
        << "50,350 50,350 150,250 250,150 250,150";
    QTest::newRow("all up to 0 share the first bucket")
        << Points{{-1.0, 1.0}, {0.0, 2.0}, {1.0, 3.0}} << 0.0 << "-50,350 0,300 150,150 150,150";
    QTest::newRow("an empty first bucket, every sample")
        << Points{{1.0, 1.0}, {2.0, 2.0}} << 0.0
        << "150,350 " + nan_vertex + "150,350 250,250 250,250";
    QTest::newRow("an empty first bucket, smoothed")
        << Points{{1.0, 1.0}, {2.0, 2.0}} << 0.2
        << "150,350 " + nan_vertex + "150,350 250,250 250,250";
    QTest::newRow("truncated, not rounded")
        << Points{{0.0, 0.0}, {0.0199, 0.0001}} << 9.0 << "50,450 51,449";
    QTest::newRow("values that are not numbers")
        << Points{{0.0, qQNaN()}, {1.0, qInf()}, {2.0, -qInf()}, {3.0, 1.0}} << 9.0
        << "50,-2147483648 150,-2147483648 250,2147483647 350,350";
}

void SeriesDrawingTest::curves_have_their_vertices()
{
    QFETCH(Points, points);
    QFETCH(double, interval);
    Plot plot;
    Series series;
    fill(series, points);
    plot.draw(series, LINES, interval);
    QTEST(plot.polyline(), "vertices");
}

void SeriesDrawingTest::curves_follow_the_plain_description_data()
{
    QTest::addColumn<double>("interval");
    QTest::newRow("every sample") << 0.0;
    QTest::newRow("narrower than the steps") << 0.001;
    QTest::newRow("as wide as a few steps") << 0.05;
    QTest::newRow("smoothed") << 0.2;
    QTest::newRow("few buckets") << 3.0;
    QTest::newRow("wider than all") << 1000.0;
    QTest::newRow("negative") << -0.2;
    QTest::newRow("not a number") << qQNaN();
    QTest::newRow("infinite") << qInf();
}

void SeriesDrawingTest::curves_follow_the_plain_description()
{
    QFETCH(double, interval);
    std::mt19937 random(20200403);
    std::uniform_real_distribution<double> part(0.0, 1.0);
    for (const double start : {0.0, 0.3, -2.0}) {
        Plot plot;
        Series series;
        double x = start;
        for (int i = 0; i < 500; ++i) {
            series.add(x, part(random) < 0.01 ? qQNaN() : 4.0 * part(random));
            if (part(random) < 0.9)
                x += part(random) < 0.02 ? 1.7 * part(random) : 0.03 * part(random);
        }
        plot.draw(series, LINES, interval);
        QCOMPARE(plot.polyline(), text_of(plain_vertices(series, interval)));
    }
}

void SeriesDrawingTest::an_empty_series_draws_nothing()
{
    for (const ChartStyle style : {LINES, DOTS}) {
        Plot plot;
        Series series;
        plot.draw(series, style, 0.2);
        QCOMPARE(plot.device.lines, QStringList());
    }
}

void SeriesDrawingTest::a_curve_is_one_polyline()
{
    Plot plot;
    Series series;
    for (int i = 0; i < 1000; ++i)
        series.add(i * 0.01, 2.0);
    plot.draw(series, LINES, 0.0);
    QCOMPARE(plot.device.drawn("polyline").size(), 1);
    QCOMPARE(plot.polyline().count(' '), 1001);
    QCOMPARE(plot.device.drawn("line"), QStringList());
}

void SeriesDrawingTest::dots_ignore_the_averaging()
{
    Plot plot;
    Series series;
    series.pen = QPen(Qt::red);
    fill(series, {{0.0, 1.0}, {0.01, 1.0}, {1.0, qQNaN()}});
    plot.draw(series, DOTS, 0.2);
    QCOMPARE(plot.device.drawn("ellipse"),
             QStringList({"48,348 4x4", "49,348 4x4", "148,-2147483650 4x4"}));
    QCOMPARE(plot.device.drawn("brush"), QStringList("#ff0000 style 1"));
}

void SeriesDrawingTest::pens_depend_on_the_device_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<bool>("print");
    QTest::addColumn<QString>("pen");
    const QString screen = "#ff0000 width 3 style 2 cap 20 join 80";
    const QString paper = "#ff0000 width 4.166666667 style 1 cap 10 join 40";
    QTest::newRow("short, screen") << 2 << false << screen;
    QTest::newRow("short, paper") << 2 << true << paper;
    QTest::newRow("averaged, screen") << 1000 << false << screen;
    QTest::newRow("averaged, paper") << 1000 << true << paper;
}

void SeriesDrawingTest::pens_depend_on_the_device()
{
    QFETCH(int, points);
    QFETCH(bool, print);
    Plot plot;
    Series series;
    series.pen = QPen(QBrush(Qt::red), 3.0, Qt::DashLine, Qt::RoundCap, Qt::RoundJoin);
    for (int i = 0; i < points; ++i)
        series.add(double(i) / points, 1.0);
    plot.draw(series, LINES, 0.2, 600, print);
    QCOMPARE(plot.device.drawn("pen").size(), 1);
    QTEST(plot.device.drawn("pen").value(0), "pen");
}

void SeriesDrawingTest::a_dot_is_a_disc_in_the_pens_colour()
{
    RecordingPaintDevice device(100, 100);
    QPainter painter(&device);
    painter.setPen(Qt::blue);
    painter.setBrush(Qt::green);
    plot_dot(&painter, QPoint(40, 30), 3);
    QCOMPARE(painter.brush().color(), QColor(Qt::green));
    painter.end();
    QCOMPARE(device.drawn("brush"), QStringList("#0000ff style 1"));
    QCOMPARE(device.drawn("ellipse"), QStringList("37,27 6x6"));
}

void SeriesDrawingTest::a_dot_far_away_is_drawn_without_overflow()
{
    RecordingPaintDevice device(100, 100);
    QPainter painter(&device);
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();
    plot_dot(&painter, QPoint(lowest, highest), 3);
    painter.end();
    QCOMPARE(device.drawn("ellipse"), QStringList("-2147483651,2147483644 6x6"));
}

void SeriesDrawingTest::far_vertices_end_on_pixels_too_data()
{
    QTest::addColumn<double>("odd");
    QTest::addColumn<double>("even");
    QTest::newRow("NaN") << qQNaN() << 1.0;
    QTest::newRow("infinite") << qInf() << -qInf();
    QTest::newRow("huge") << 1e300 << -1e300;
    QTest::newRow("beyond a device") << 1e6 << -1e6;
}

void SeriesDrawingTest::far_vertices_end_on_pixels_too()
{
    QFETCH(double, odd);
    QFETCH(double, even);
    Plot plot;
    Series series;
    for (int i = 0; i < 1000; ++i)
        series.add(i * 0.01, i % 2 == 1 ? odd : even);
    series.set_axes(&plot.x, &plot.y);
    QImage image(1200, 500, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    const QRect plot_area(50, 51, 1000, 400);
    painter.setClipRect(plot_area);
    series.plot(&painter, LINES, 0.0, 2, 96, false);
    series.plot(&painter, DOTS, 0.0, 2, 96, false);
    painter.end();

    QImage outside = image;
    QPainter eraser(&outside);
    eraser.fillRect(plot_area, Qt::white);
    eraser.end();
    QImage white(image.size(), image.format());
    white.fill(Qt::white);
    QCOMPARE(outside, white);
}

KEST_TEST(SeriesDrawingTest)
#include "tst_series_drawing.moc"
