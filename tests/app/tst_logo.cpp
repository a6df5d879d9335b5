#include "app/main_window.h"

#include "chart_window.h"
#include "charts/paint_box.h"
#include "station/test_station.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QLabel>
#include <QPaintEvent>
#include <QPainter>
#include <QtTest>

namespace
{
constexpr int LOGO_WIDTH = 267;
constexpr int LOGO_HEIGHT = 67;

/** Where the grid ends: a gap behind the title of its last column. */
int grid_width(const PaintBox* header)
{
    for (const QLabel* label : header->findChildren<QLabel*>())
        if (label->text() == "Serial Number")
            return label->x() + label->width() + QLabel(" ").minimumSizeHint().width();
    return -1;
}

bool logo_drawn(PaintBox* header, int width, QString* target = nullptr)
{
    RecordingPaintDevice device(width, LOGO_HEIGHT);
    QPainter painter(&device);
    emit header->sig_paint(&painter, QRect(0, 0, width, LOGO_HEIGHT));
    painter.end();
    const QStringList pixmaps = device.drawn("pixmap");
    if (target != nullptr)
        *target = pixmaps.value(0);
    return !pixmaps.isEmpty();
}

/** Collects where a widget is painted. */
class PaintedRegion : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

    QRegion region;
};
}  // namespace

/** The logo beside the table of colours and ticks. */
class LogoTest : public QObject
{
    Q_OBJECT

private slots:
    void the_logo_stands_at_the_right();
    void the_logo_vanishes_when_the_room_is_too_small();
    void the_room_for_the_logo_shrinks_with_every_cycle();
    void the_logo_s_place_is_painted_after_a_rebuild();
    void the_logo_is_on_the_screen();
};

void LogoTest::the_logo_stands_at_the_right()
{
    const ChartWindow bench;
    QString target;
    QVERIFY(logo_drawn(bench.header, 1000, &target));
    QCOMPARE(target, QString("730,0 267x67"));
}

void LogoTest::the_logo_vanishes_when_the_room_is_too_small()
{
    const ChartWindow bench;
    const int room = grid_width(bench.header) + LOGO_WIDTH;
    QVERIFY(logo_drawn(bench.header, room));
    QVERIFY(!logo_drawn(bench.header, room - 1));
}

void LogoTest::the_room_for_the_logo_shrinks_with_every_cycle()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    int former_room = 0;
    for (int i = 0; i < 3; ++i) {
        const int room = grid_width(bench.header) + LOGO_WIDTH;
        QVERIFY(room > former_room);
        QVERIFY(logo_drawn(bench.header, room));
        QVERIFY(!logo_drawn(bench.header, room - 1));
        bench.add_cycle(station, CURVE);
        former_room = room;
    }
}

void LogoTest::the_logo_s_place_is_painted_after_a_rebuild()
{
    ChartWindow bench;
    TestStation* station = bench.add_station(1);
    bench.add_cycle(station, CURVE);
    bench.settle();
    PaintedRegion painted;
    bench.header->installEventFilter(&painted);
    bench.add_cycle(station, CURVE);
    bench.settle();
    const int right = bench.header->width() - 10;
    QVERIFY(painted.region.contains(QRect(right - 100, 0, 100, LOGO_HEIGHT)));
}

void LogoTest::the_logo_is_on_the_screen()
{
    ChartWindow bench;
    bench.window->showNormal();
    bench.window->resize(1500, 800);
    const QPixmap logo(":/battery_tester_logo_267x67.png");
    QCOMPARE(logo.size(), QSize(LOGO_WIDTH, LOGO_HEIGHT));
    const QImage header = bench.shown(bench.header);
    QImage expected(logo.size(), QImage::Format_RGB32);
    expected.fill(bench.header->palette().color(QPalette::Window));
    QPainter(&expected).drawPixmap(0, 0, logo);
    QCOMPARE(header.copy(header.width() - LOGO_WIDTH - 3, 0, LOGO_WIDTH, LOGO_HEIGHT)
                 .convertToFormat(QImage::Format_RGB32),
             expected);
}

KEST_TEST(LogoTest)
#include "tst_logo.moc"
