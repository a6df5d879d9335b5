#include "charts/paint_box.h"
#include "support/test_program.h"

#include <QPainter>
#include <QRubberBand>
#include <QSignalSpy>
#include <QtTest>

class PaintBoxTest : public QObject
{
    Q_OBJECT

private slots:
    void sizes_are_as_hinted();
    void painting_is_left_to_the_listener();
    void nobody_listening_paints_nothing();
    void a_disabled_box_ignores_the_mouse();
    void a_drag_shows_a_band_and_reports_its_rectangle_data();
    void a_drag_shows_a_band_and_reports_its_rectangle();
    void the_band_is_gone_when_its_rectangle_is_reported();
    void a_click_reports_a_rectangle_without_size();
    void every_button_can_drag_data();
    void every_button_can_drag();
    void a_second_press_is_ignored_and_either_release_ends();
    void moves_without_a_drag_do_nothing();
    void a_box_may_die_during_a_drag();
};

namespace
{

struct Box
{
    Box() : box(nullptr), spy(&box, &PaintBox::sig_rubberband)
    {
        box.resize(300, 200);
        box.rubberband_enabled = true;
        box.show();
    }

    void press(QPoint pos, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mousePress(&box, button, {}, pos);
    }

    /** As the window system sends it during a drag: tracking is off, a button is held. */
    void move(QPoint pos)
    {
        QMouseEvent event(QEvent::MouseMove, pos, box.mapToGlobal(pos), Qt::NoButton,
                          Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&box, &event);
    }

    void release(QPoint pos, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseRelease(&box, button, {}, pos);
    }

    QRubberBand* band() const
    {
        return box.findChild<QRubberBand*>();
    }

    QRect reported() const
    {
        return spy.value(0).value(0).toRect();
    }

    PaintBox box;
    QSignalSpy spy;
};

}  // namespace

void PaintBoxTest::sizes_are_as_hinted()
{
    const PaintBox box(nullptr);
    QCOMPARE(box.sizeHint(), QSize(200, 200));
    QCOMPARE(box.minimumSizeHint(), QSize(100, 100));
    QVERIFY(!box.rubberband_enabled);
    QVERIFY(!box.hasMouseTracking());
}

void PaintBoxTest::painting_is_left_to_the_listener()
{
    PaintBox box(nullptr);
    box.resize(120, 80);
    QVector<QRect> rects;
    connect(&box, &PaintBox::sig_paint, [&rects](QPainter* painter, QRect rect) {
        rects << rect;
        painter->fillRect(rect, Qt::red);
    });
    const QImage image = box.grab().toImage();
    QCOMPARE(rects, QVector<QRect>{QRect(QPoint(0, 0), QPoint(119, 79))});
    QCOMPARE(image.pixelColor(0, 0), QColor(Qt::red));
    QCOMPARE(image.pixelColor(119, 79), QColor(Qt::red));
}

void PaintBoxTest::nobody_listening_paints_nothing()
{
    PaintBox box(nullptr);
    box.resize(50, 50);
    QImage image(50, 50, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::green);
    const QImage before = image;
    box.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    QCOMPARE(image, before);
}

void PaintBoxTest::a_disabled_box_ignores_the_mouse()
{
    Box test;
    test.box.rubberband_enabled = false;
    test.press({10, 10});
    QVERIFY(test.band() == nullptr);
    test.move({50, 50});
    test.release({50, 50});
    QCOMPARE(test.spy.count(), 0);
}

void PaintBoxTest::a_drag_shows_a_band_and_reports_its_rectangle_data()
{
    QTest::addColumn<QPoint>("from");
    QTest::addColumn<QPoint>("to");
    QTest::addColumn<QRect>("rect");
    const QRect same(QPoint(10, 20), QPoint(99, 79));
    QTest::newRow("down and right") << QPoint(10, 20) << QPoint(100, 80) << same;
    QTest::newRow("up and left") << QPoint(100, 80) << QPoint(10, 20) << same;
    QTest::newRow("up and right") << QPoint(10, 80) << QPoint(100, 20) << same;
    QTest::newRow("beyond the box")
        << QPoint(10, 20) << QPoint(-50, 900) << QRect(QPoint(-50, 20), QPoint(9, 899));
}

void PaintBoxTest::a_drag_shows_a_band_and_reports_its_rectangle()
{
    QFETCH(QPoint, from);
    QFETCH(QPoint, to);
    QFETCH(QRect, rect);
    Box test;
    test.press(from);
    QVERIFY(test.band() != nullptr);
    QVERIFY(test.band()->isVisible());
    QCOMPARE(test.band()->shape(), QRubberBand::Rectangle);
    QCOMPARE(test.band()->geometry(), QRect(from, QSize(1, 1)));
    test.move(to);
    QCOMPARE(test.band()->geometry(), rect);
    QCOMPARE(test.spy.count(), 0);
    test.release(to);
    QVERIFY(test.band() == nullptr);
    QCOMPARE(test.spy.count(), 1);
    QCOMPARE(test.reported(), rect);
    QCOMPARE(rect.width(), qAbs(to.x() - from.x()));
    QCOMPARE(rect.height(), qAbs(to.y() - from.y()));
}

/** The listener may show a message box, under which the mouse moves on. */
void PaintBoxTest::the_band_is_gone_when_its_rectangle_is_reported()
{
    Box test;
    QList<bool> gone;
    connect(&test.box, &PaintBox::sig_rubberband, [&] {
        gone << (test.band() == nullptr);
        test.release({70, 70});
    });
    test.press({10, 10});
    test.release({50, 60});
    QCOMPARE(gone, QList<bool>{true});
}

void PaintBoxTest::a_click_reports_a_rectangle_without_size()
{
    Box test;
    test.press({30, 40});
    test.release({30, 40});
    QCOMPARE(test.reported(), QRect(QPoint(30, 40), QPoint(29, 39)));
}

void PaintBoxTest::every_button_can_drag_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("left") << int(Qt::LeftButton);
    QTest::newRow("middle") << int(Qt::MiddleButton);
    QTest::newRow("right") << int(Qt::RightButton);
}

void PaintBoxTest::every_button_can_drag()
{
    QFETCH(int, button);
    Box test;
    test.press({10, 10}, static_cast<Qt::MouseButton>(button));
    QVERIFY(test.band() != nullptr);
    test.release({20, 30}, static_cast<Qt::MouseButton>(button));
    QCOMPARE(test.reported(), QRect(10, 10, 10, 20));
}

void PaintBoxTest::a_second_press_is_ignored_and_either_release_ends()
{
    Box test;
    test.press({10, 10}, Qt::LeftButton);
    const QRubberBand* const band = test.band();
    test.press({50, 50}, Qt::RightButton);
    QCOMPARE(test.box.findChildren<QRubberBand*>().size(), 1);
    QVERIFY(test.band() == band);
    test.release({60, 70}, Qt::RightButton);
    QCOMPARE(test.reported(), QRect(QPoint(10, 10), QPoint(59, 69)));
    test.release({80, 80}, Qt::LeftButton);
    QCOMPARE(test.spy.count(), 1);
}

void PaintBoxTest::moves_without_a_drag_do_nothing()
{
    Box test;
    test.move({50, 50});
    test.release({60, 60});
    QVERIFY(test.band() == nullptr);
    QCOMPARE(test.spy.count(), 0);
}

void PaintBoxTest::a_box_may_die_during_a_drag()
{
    QPointer<QRubberBand> band;
    {
        Box test;
        test.press({10, 10});
        band = test.band();
        QVERIFY(!band.isNull());
    }
    QVERIFY(band.isNull());
}

KEST_TEST(PaintBoxTest)
#include "tst_paint_box.moc"
