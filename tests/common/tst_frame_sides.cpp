#include "common/frame_sides.h"
#include "support/test_program.h"

#include <QFrame>
#include <QLabel>
#include <QPainter>
#include <QProxyStyle>
#include <QtTest>

namespace
{
/** Notes where each frame that it draws may be drawn. */
class NotingStyle : public QProxyStyle
{
public:
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        if (element == CE_ShapedFrame)
            clips.append(painter->hasClipping() ? painter->clipBoundingRect().toRect() : QRect());
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    mutable QList<QRect> clips;
};

/** A frame with two labels that have a ground of their own, like a panel. */
class Panel : public QFrame
{
public:
    Panel(int style, int line_width, int mid_line_width)
    {
        setFrameStyle(style);
        setLineWidth(line_width);
        setMidLineWidth(mid_line_width);
        resize(90, 60);
        for (const QPoint& place : {QPoint(10, 10), QPoint(40, 30)}) {
            auto* label = new QLabel("9.81", this);
            label->setGeometry(QRect(place, QSize(30, 15)));
            label->setAutoFillBackground(true);
        }
    }
};
}  // namespace

class FrameSidesTest : public QObject
{
    Q_OBJECT

private slots:
    void the_frame_looks_as_before_data();
    void the_frame_looks_as_before();
    void a_disabled_frame_looks_as_before();
    void each_side_is_painted_by_itself();
    void a_frame_without_room_inside_is_painted();
    void the_labels_in_it_are_painted();
    void a_changed_frame_is_painted_as_it_is_now();
};

void FrameSidesTest::the_frame_looks_as_before_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<int>("line_width");
    QTest::addColumn<int>("mid_line_width");
    QTest::newRow("raised panel") << int(QFrame::Panel | QFrame::Raised) << 3 << 0;
    QTest::newRow("sunken panel") << int(QFrame::Panel | QFrame::Sunken) << 3 << 0;
    QTest::newRow("plain panel") << int(QFrame::Panel | QFrame::Plain) << 2 << 0;
    QTest::newRow("raised box") << int(QFrame::Box | QFrame::Raised) << 2 << 3;
    QTest::newRow("plain box") << int(QFrame::Box | QFrame::Plain) << 1 << 0;
    QTest::newRow("styled panel") << int(QFrame::StyledPanel | QFrame::Sunken) << 1 << 0;
    QTest::newRow("no frame") << int(QFrame::NoFrame) << 1 << 0;
}

void FrameSidesTest::the_frame_looks_as_before()
{
    QFETCH(int, style);
    QFETCH(int, line_width);
    QFETCH(int, mid_line_width);
    Panel panel(style, line_width, mid_line_width);
    const QImage before = panel.grab().toImage();
    paint_by_sides(&panel);
    QCOMPARE(panel.grab().toImage(), before);
}

void FrameSidesTest::a_disabled_frame_looks_as_before()
{
    Panel panel(QFrame::Panel | QFrame::Raised, 3, 0);
    panel.setEnabled(false);
    const QImage before = panel.grab().toImage();
    paint_by_sides(&panel);
    QCOMPARE(panel.grab().toImage(), before);
}

void FrameSidesTest::each_side_is_painted_by_itself()
{
    NotingStyle style;
    Panel panel(QFrame::Panel | QFrame::Raised, 3, 0);
    panel.setStyle(&style);
    paint_by_sides(&panel);
    panel.grab();
    QCOMPARE(style.clips, (QList<QRect>{
                              {0, 0, 90, 3},
                              {0, 3, 3, 54},
                              {87, 3, 3, 54},
                              {0, 57, 90, 3},
                          }));
}

void FrameSidesTest::a_frame_without_room_inside_is_painted()
{
    for (const QSize& size : {QSize(5, 5), QSize(6, 40), QSize(1, 1)}) {
        Panel panel(QFrame::Panel | QFrame::Sunken, 3, 0);
        panel.resize(size);
        const QImage before = panel.grab().toImage();
        paint_by_sides(&panel);
        QCOMPARE(panel.grab().toImage(), before);
    }
}

void FrameSidesTest::the_labels_in_it_are_painted()
{
    Panel panel(QFrame::Panel | QFrame::Raised, 3, 0);
    paint_by_sides(&panel);
    const QImage with = panel.grab().toImage();
    for (QLabel* label : panel.findChildren<QLabel*>())
        label->clear();
    QVERIFY(panel.grab().toImage() != with);
}

void FrameSidesTest::a_changed_frame_is_painted_as_it_is_now()
{
    Panel panel(QFrame::Panel | QFrame::Raised, 3, 0);
    paint_by_sides(&panel);
    panel.setFrameStyle(QFrame::Panel | QFrame::Sunken);
    panel.setLineWidth(5);
    panel.resize(70, 50);
    Panel plain(QFrame::Panel | QFrame::Sunken, 5, 0);
    plain.resize(70, 50);
    QCOMPARE(panel.grab().toImage(), plain.grab().toImage());
}

KEST_TEST(FrameSidesTest)

#include "tst_frame_sides.moc"
