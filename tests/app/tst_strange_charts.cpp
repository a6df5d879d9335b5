#include "app/main_window.h"
#include "support/test_program.h"

#include "chart_window.h"
#include "charts/paint_box.h"
#include "station/test_station.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPaintEngine>
#include <QPainter>
#include <QtTest>

#include <limits>
#include <new>

namespace
{
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/** Has memory for the ground of a chart, and for nothing more. */
class FailingEngine : public QPaintEngine
{
public:
    FailingEngine() : QPaintEngine(AllFeatures)
    {
    }

    bool begin(QPaintDevice*) override
    {
        return true;
    }

    bool end() override
    {
        return true;
    }

    Type type() const override
    {
        return User;
    }

    void updateState(const QPaintEngineState&) override
    {
    }

    void drawRects(const QRectF*, int) override
    {
        if (++rects == 2)
            throw std::bad_alloc();
    }

    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override
    {
    }

    int rects = 0;
};

class FailingDevice : public QPaintDevice
{
public:
    QPaintEngine* paintEngine() const override
    {
        return &engine;
    }

    mutable FailingEngine engine;

protected:
    int metric(PaintDeviceMetric which) const override
    {
        return which == PdmWidth || which == PdmHeight ? 500 : 96;
    }
};
}  // namespace

/** Curves and boxes of which no sensible chart can be made, under the mouse. */
class StrangeChartsTest : public QObject
{
    Q_OBJECT

private slots:
    void strange_curves_are_survived_data();
    void strange_curves_are_survived();
    void a_box_without_room_is_survived_data();
    void a_box_without_room_is_survived();
    void a_device_that_fails_ends_that_paint_only();
};

void StrangeChartsTest::strange_curves_are_survived_data()
{
    QTest::addColumn<QList<QPointF>>("points");
    using Points = QList<QPointF>;
    QTest::newRow("none") << Points{};
    QTest::newRow("one") << Points{{1.0, 1.0}};
    QTest::newRow("one at the origin") << Points{{0.0, 0.0}};
    QTest::newRow("one value") << Points{{1.0, 5.0}, {1.0, 5.0}, {1.0, 5.0}};
    QTest::newRow("no numbers") << Points{{NOT_A_NUMBER, NOT_A_NUMBER}};
    QTest::newRow("a gap of no number") << Points{{0.0, 1.0}, {1.0, NOT_A_NUMBER}, {2.0, 3.0}};
    QTest::newRow("no x") << Points{{0.0, 1.0}, {NOT_A_NUMBER, 2.0}, {2.0, 3.0}};
    QTest::newRow("infinite") << Points{{0.0, 1.0}, {INF, INF}};
    QTest::newRow("infinite both ways") << Points{{-INF, -INF}, {INF, INF}};
    QTest::newRow("infinite y") << Points{{0.0, INF}, {1.0, -INF}};
    QTest::newRow("huge") << Points{{-1e308, -1e308}, {1e308, 1e308}};
    QTest::newRow("tiny") << Points{{0.0, 0.0}, {1e-308, 1e-308}};
    QTest::newRow("negative") << Points{{-2.0, -5.0}, {-1.0, -4.0}};
    QTest::newRow("unsorted") << Points{{3.0, 5.0}, {1.0, 9.0}, {2.0, -1.0}, {0.0, 4.0}};
}

void StrangeChartsTest::strange_curves_are_survived()
{
    QFETCH(QList<QPointF>, points);
    ChartWindow bench;
    TestStation* station = bench.add_station(4);
    TestCycle* cycle = bench.add_cycle(station, points);
    for (const QPointF& point : points)
        cycle->current_vs_amphours.add(point.y(), point.x());
    cycle->internal_resistance.points = points;
    for (const bool smoothed : {true, false}) {
        bench.widget<QCheckBox>("cbSmoothVoltageChart")->setChecked(smoothed);
        for (const char* choice : {"Current", "RBatt"}) {
            bench.widget<QComboBox>("cbBottomChart")->setCurrentText(choice);
            for (const PaintBox* box : {bench.upper, bench.lower}) {
                bench.hover(box, box->rect().center());
                bench.window->slot_refresh_charts();
                QVERIFY(!bench.shown(box).isNull());
                QCOMPARE(box->toolTip().isEmpty(), points.isEmpty());
            }
        }
    }
}

void StrangeChartsTest::a_box_without_room_is_survived_data()
{
    QTest::addColumn<QSize>("size");
    for (const QSize& size :
         {QSize(0, 0), QSize(1, 1), QSize(20, 300), QSize(300, 20), QSize(60, 60), QSize(3000, 1)})
        QTest::addRow("%d x %d", size.width(), size.height()) << size;
}

void StrangeChartsTest::a_box_without_room_is_survived()
{
    QFETCH(QSize, size);
    ChartWindow bench;
    bench.add_cycle(bench.add_station(4), CURVE);
    bench.hover(bench.upper, {0, 0});
    bench.upper->setMinimumSize(0, 0);
    bench.upper->resize(size);
    bench.upper->repaint();
    QPixmap pixmap(qMax(1, size.width()), qMax(1, size.height()));
    QPainter painter(&pixmap);
    emit bench.upper->sig_paint(&painter, QRect(QPoint(0, 0), size));
    emit bench.upper->sig_paint(&painter, QRect(QPoint(10, 10), QSize(-50, -50)));
    QVERIFY(painter.isActive());
}

void StrangeChartsTest::a_device_that_fails_ends_that_paint_only()
{
    ChartWindow bench;
    bench.add_cycle(bench.add_station(4), CURVE);
    bench.window->slot_refresh_charts();
    const QImage before = bench.shown(bench.upper);
    FailingDevice device;
    QPainter painter(&device);
    emit bench.upper->sig_paint(&painter, QRect(0, 0, 500, 500));
    // The ground and the frame, but neither labels nor the frame's second time.
    QCOMPARE(device.engine.rects, 2);
    painter.end();
    bench.upper->repaint();
    QCOMPARE(bench.shown(bench.upper), before);
}

KEST_TEST(StrangeChartsTest)
#include "tst_strange_charts.moc"
