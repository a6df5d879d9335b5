#include "charts/series.h"
#include "plain_axes.h"
#include "support/test_program.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

class SeriesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_fresh_series_is_empty_and_visible();
    void the_styles_have_their_numbers();
    void adding_appends_and_widens_the_ranges();
    void the_mean_of_y_is_zero_without_points();
    void a_search_finds_the_point_or_its_neighbour_below_data();
    void a_search_finds_the_point_or_its_neighbour_below();
    void a_search_in_an_empty_series_finds_nothing();
    void points_go_through_the_axes_and_back();
    void wrong_axes_end_the_program_data();
    void wrong_axes_end_the_program();
    void a_moving_average_leaves_out_the_last_point_data();
    void a_moving_average_leaves_out_the_last_point();
    void the_average_of_a_polygon_is_the_mean_of_both();
};

void SeriesTest::a_fresh_series_is_empty_and_visible()
{
    const Series series;
    QVERIFY(series.points.isEmpty());
    QVERIFY(series.visible);
    QVERIFY(series.name.isEmpty());
    QVERIFY(series.get_x_axis() == nullptr);
    QVERIFY(series.get_y_axis() == nullptr);
    QCOMPARE(series.pen, QPen(QBrush(Qt::black), 1.0, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    QCOMPARE(series.x_range.size(), -qInf());
    QCOMPARE(series.y_range.size(), -qInf());
}

void SeriesTest::the_styles_have_their_numbers()
{
    QCOMPARE(int(LINES), 0);
    QCOMPARE(int(DOTS), 1);
}

void SeriesTest::adding_appends_and_widens_the_ranges()
{
    Series series;
    fill(series, {{2.0, 7.0}, {1.0, 9.0}, {1.0, qQNaN()}});
    QCOMPARE(series.points.size(), 3);
    QCOMPARE(series.points.at(1), QPointF(1.0, 9.0));
    QCOMPARE(series.x_range.min, 1.0);
    QCOMPARE(series.x_range.max, 2.0);
    QCOMPARE(series.y_range.min, 7.0);
    QCOMPARE(series.y_range.max, 9.0);
}

void SeriesTest::the_mean_of_y_is_zero_without_points()
{
    Series series;
    QCOMPARE(series.avg_y(), 0.0);
    fill(series, {{0.0, 1.0}, {1.0, 2.0}, {2.0, 6.0}});
    QCOMPARE(series.avg_y(), 3.0);
}

void SeriesTest::a_search_finds_the_point_or_its_neighbour_below_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<int>("result");
    QTest::newRow("first") << 1.0 << 0;
    QTest::newRow("second") << 2.0 << 1;
    QTest::newRow("third") << 4.0 << 2;
    QTest::newRow("last") << 8.0 << 3;
    QTest::newRow("below all looks like the first") << 0.5 << 0;
    QTest::newRow("after the first") << 1.5 << ~0;
    QTest::newRow("after the second") << 3.0 << ~1;
    QTest::newRow("before the last") << 7.9 << ~2;
    QTest::newRow("above all") << 9.0 << -4;
}

void SeriesTest::a_search_finds_the_point_or_its_neighbour_below()
{
    Series series;
    fill(series, {{1.0, 0.0}, {2.0, 0.0}, {4.0, 0.0}, {8.0, 0.0}});
    QFETCH(double, x);
    QTEST(series.binary_search(x), "result");
}

void SeriesTest::a_search_in_an_empty_series_finds_nothing()
{
    const Series series;
    QCOMPARE(series.binary_search(1.0), -1);
}

void SeriesTest::points_go_through_the_axes_and_back()
{
    PlainAxes axes;
    Series series;
    series.set_axes(&axes.x, &axes.y);
    QCOMPARE(series.get_x_axis(), &axes.x);
    QCOMPARE(series.get_y_axis(), &axes.y);
    QCOMPARE(series.map_x(2.0), 250);
    QCOMPARE(series.map_y(1.0), 350);
    QCOMPARE(series.map_point(QPointF(2.0, 1.0)), QPoint(250, 350));
    QCOMPARE(series.unmap_x(250), 2.0);
    QCOMPARE(series.unmap_y(350), 1.0);
    QCOMPARE(series.unmap_point(QPoint(250, 350)), QPointF(2.0, 1.0));
}

void SeriesTest::wrong_axes_end_the_program_data()
{
    QTest::addColumn<QString>("axes");
    QTest::addColumn<QString>("output");
    QTest::newRow("two bottom axes") << "bottom bottom"
                                     << "Series::Series(): y_axis must be left or right";
    QTest::newRow("two left axes") << "left left"
                                   << "Series::Series(): x_axis must be top or bottom";
}

void SeriesTest::wrong_axes_end_the_program()
{
    QFETCH(QString, axes);
    QFETCH(QString, output);
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {"tst_series", "--set-axes", axes});
    QVERIFY(process.waitForStarted());
    process.write("\n");
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()),
             output + "\nthe application will now terminate\n");
}

void SeriesTest::a_moving_average_leaves_out_the_last_point_data()
{
    QTest::addColumn<int>("window");
    QTest::addColumn<Points>("result");
    const Points polygon{{0.0, 2.0}, {1.0, 4.0}, {2.0, 9.0}, {3.0, 5.0}};
    QTest::newRow("one") << 1 << Points{{0.0, 2.0}, {1.0, 4.0}, {2.0, 9.0}};
    QTest::newRow("two") << 2 << Points{{0.5, 3.0}, {1.5, 6.5}};
    QTest::newRow("three") << 3 << Points{{1.0, 5.0}};
    QTest::newRow("as many as there are") << 4 << Points{};
    QTest::newRow("more than there are") << 5 << polygon;
    QTest::newRow("none") << 0 << polygon;
    QTest::newRow("fewer than none") << -3 << polygon;
}

void SeriesTest::a_moving_average_leaves_out_the_last_point()
{
    QFETCH(int, window);
    QFETCH(Points, result);
    const QPolygonF polygon(Points{{0.0, 2.0}, {1.0, 4.0}, {2.0, 9.0}, {3.0, 5.0}});
    QCOMPARE(smooth(polygon, window), QPolygonF(result));
}

void SeriesTest::the_average_of_a_polygon_is_the_mean_of_both()
{
    QCOMPARE(polyline_average(QPolygonF(Points{{0.0, 2.0}, {1.0, 4.0}, {5.0, 9.0}})),
             QPointF(2.0, 5.0));
    const QPointF nothing = polyline_average(QPolygonF());
    QVERIFY(qIsNaN(nothing.x()));
    QVERIFY(qIsNaN(nothing.y()));
}

/** The other life of this program: one that must not outlive its axes. */
int set_axes(const QByteArray& axes)
{
    Axis bottom(BOTTOM);
    Axis left(LEFT);
    Series series;
    if (axes == "bottom bottom")
        series.set_axes(&bottom, &bottom);
    else
        series.set_axes(&left, &left);
    return 0;
}

static int tests_or_axes(int argc, char** argv)
{
    if (argc == 3 && QByteArray(argv[1]) == "--set-axes")
        return set_axes(argv[2]);
    return run_tests<QCoreApplication, SeriesTest>(argc, argv);
}

KEST_TEST_MAIN(tests_or_axes)

#include "tst_series.moc"
