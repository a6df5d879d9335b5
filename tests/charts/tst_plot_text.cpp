#include "charts/plot_text.h"
#include "expected_drawing.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QPainter>
#include <QtTest>

/** How a text is drawn: in which font, turned by how much, on how fine a device, how much enlarged. */
struct Look
{
    QFont font = QFont("Helvetica", 8);
    int rotation = 0;
    double device_pixel_ratio = 1.0;
    int dots_per_meter = 3780;
    double zoom = 1.0;
};

Q_DECLARE_METATYPE(Look)

class PlotTextTest : public QObject
{
    Q_OBJECT

private slots:
    void alignment_moves_the_text_data();
    void alignment_moves_the_text();
    void the_opaque_box_reaches_a_pixel_beyond_the_text_data();
    void the_opaque_box_reaches_a_pixel_beyond_the_text();
    void rotation_is_counter_clockwise_about_the_anchor();
    void texts_look_as_when_drawn_without_a_detour_data();
    void texts_look_as_when_drawn_without_a_detour();
    void the_painter_is_left_as_it_was();
    void far_away_anchors_draw_nothing_and_end_data();
    void far_away_anchors_draw_nothing_and_end();
};

namespace
{

/** Odd in width, so that half of it is no whole number. */
QString odd_text(const QFontMetrics& metrics)
{
    QString text = "12.5";
    while (metrics.boundingRect(text).width() % 2 == 0)
        text += "1";
    return text;
}

QString at(double x, double y, const QString& text)
{
    return QString("%1,%2 %3").arg(x).arg(y).arg(text);
}

template <typename Draw> QImage drawn(const Look& look, Draw draw)
{
    QImage image(QSize(300, 150) * look.device_pixel_ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(look.dots_per_meter);
    image.setDotsPerMeterY(look.dots_per_meter);
    image.setDevicePixelRatio(look.device_pixel_ratio);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.scale(look.zoom, look.zoom);
    painter.setFont(look.font);
    painter.setPen(QColor(200, 0, 40));
    draw(painter);
    return image;
}

}  // namespace

void PlotTextTest::alignment_moves_the_text_data()
{
    QTest::addColumn<int>("horizontal");
    QTest::addColumn<int>("vertical");
    QTest::addColumn<double>("part_of_width");
    QTest::addColumn<double>("part_of_height");
    QTest::newRow("left top") << int(Qt::AlignLeft) << int(Qt::AlignTop) << 0.0 << 0.0;
    QTest::newRow("right bottom") << int(Qt::AlignRight) << int(Qt::AlignBottom) << 1.0 << 1.0;
    QTest::newRow("centred") << int(Qt::AlignHCenter) << int(Qt::AlignVCenter) << 0.5 << 0.5;
    QTest::newRow("a combined flag counts as any other")
        << int(Qt::AlignCenter) << int(Qt::AlignCenter) << 0.0 << 0.0;
    QTest::newRow("flags of the other direction")
        << int(Qt::AlignVCenter) << int(Qt::AlignHCenter) << 0.0 << 0.0;
    QTest::newRow("none") << 0 << 0 << 0.0 << 0.0;
}

void PlotTextTest::alignment_moves_the_text()
{
    QFETCH(int, horizontal);
    QFETCH(int, vertical);
    QFETCH(double, part_of_width);
    QFETCH(double, part_of_height);
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    painter.setFont(pinned_font(8));
    const QString text = odd_text(painter.fontMetrics());
    const QRect bounds = painter.fontMetrics().boundingRect(text);
    plot_text(&painter, text, 0, horizontal, vertical, false, 100.25, 50.5);
    painter.end();

    QCOMPARE(device.drawn("transform"), QStringList("1 0 0 1 at 100.25,50.5"));
    QCOMPARE(device.drawn("rect"), QStringList());
    QCOMPARE(device.drawn("text"),
             QStringList(at(-bounds.width() * part_of_width,
                            -bounds.height() * part_of_height - bounds.top(), text)));
}

void PlotTextTest::the_opaque_box_reaches_a_pixel_beyond_the_text_data()
{
    QTest::addColumn<int>("horizontal");
    QTest::addColumn<int>("vertical");
    QTest::newRow("left top") << int(Qt::AlignLeft) << int(Qt::AlignTop);
    QTest::newRow("centred, truncated toward zero")
        << int(Qt::AlignHCenter) << int(Qt::AlignVCenter);
    QTest::newRow("right bottom") << int(Qt::AlignRight) << int(Qt::AlignBottom);
    QTest::newRow("combined") << int(Qt::AlignCenter) << int(Qt::AlignVCenter);
}

void PlotTextTest::the_opaque_box_reaches_a_pixel_beyond_the_text()
{
    QFETCH(int, horizontal);
    QFETCH(int, vertical);
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    painter.setFont(pinned_font(8));
    painter.setBrush(Qt::white);
    const QString text = odd_text(painter.fontMetrics());
    const QRect bounds = painter.fontMetrics().boundingRect(text);
    plot_text(&painter, text, 0, horizontal, vertical, true, 100.0, 50.0);
    painter.end();

    const double dx = horizontal == Qt::AlignRight     ? -bounds.width()
                      : horizontal == Qt::AlignHCenter ? -bounds.width() / 2.0
                                                       : 0.0;
    const double dy = vertical == Qt::AlignBottom    ? -bounds.height()
                      : vertical == Qt::AlignVCenter ? -bounds.height() / 2.0
                                                     : 0.0;
    QCOMPARE(device.drawn("rect"), QStringList(QString("%1,%2 %3x%4")
                                                   .arg(int(dx - 1.0))
                                                   .arg(int(dy))
                                                   .arg(bounds.width() + 2)
                                                   .arg(bounds.height())));
    QCOMPARE(device.drawn("text"), QStringList(at(dx, dy - bounds.top(), text)));
    QVERIFY2(device.lines.at(device.lines.size() - 1).startsWith("text"), "the box lies behind");
}

void PlotTextTest::rotation_is_counter_clockwise_about_the_anchor()
{
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    plot_text(&painter, "up", 90, Qt::AlignLeft, Qt::AlignTop, false, 100.0, 50.0);
    painter.end();
    QCOMPARE(device.drawn("transform"), QStringList("0 -1 1 0 at 100,50"));
}

void PlotTextTest::texts_look_as_when_drawn_without_a_detour_data()
{
    QTest::addColumn<Look>("look");
    const QFont label = pinned_font(8);
    const QFont caption = pinned_font(10);
    for (const double ratio : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        QTest::addRow("label at %g", ratio) << Look{label, 0, ratio};
        QTest::addRow("caption, turned, at %g", ratio) << Look{caption, 90, ratio};
    }
    QTest::newRow("on a fine device") << Look{label, 0, 1.0, 11811};
    QTest::newRow("enlarged") << Look{label, 0, 1.0, 3780, 1.5};
}

void PlotTextTest::texts_look_as_when_drawn_without_a_detour()
{
    QFETCH(Look, look);
    for (const QString& text :
         {QString("0.5"), QString("Station 10:3"), QString::fromUtf8("Resistance (m\u2126)"),
          QString::fromUtf8("e\u0301te\u0301 \u05e9\u05dc"), QString("a\tb\n<b>c")}) {
        const QImage expected = drawn(look, [&](QPainter& painter) {
            const QRect bounds = painter.fontMetrics().boundingRect(text);
            painter.translate(150.0, 60.5);
            painter.rotate(-look.rotation);
            painter.drawText(QPointF(-bounds.width(), -bounds.height() / 2.0 - bounds.top()), text);
        });
        const QImage image = drawn(look, [&](QPainter& painter) {
            plot_text(&painter, text, look.rotation, Qt::AlignRight, Qt::AlignVCenter, false, 150.0,
                      60.5);
        });
        QCOMPARE(image, expected);
    }
}

void PlotTextTest::the_painter_is_left_as_it_was()
{
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    painter.translate(3.0, 4.0);
    painter.setPen(Qt::red);
    const QTransform before = painter.transform();
    plot_text(&painter, "text", 90, Qt::AlignRight, Qt::AlignBottom, true, 100.0, 50.0);
    QCOMPARE(painter.transform(), before);
    QCOMPARE(painter.pen().color(), QColor(Qt::red));
}

void PlotTextTest::far_away_anchors_draw_nothing_and_end_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::newRow("most negative") << -2147483648.0 << -2147483648.0;
    QTest::newRow("most positive") << 2147483647.0 << 2147483647.0;
    QTest::newRow("one of each") << -2147483648.0 << 100.0;
    QTest::newRow("beyond an int") << 1e20 << -1e20;
}

void PlotTextTest::far_away_anchors_draw_nothing_and_end()
{
    QFETCH(double, x);
    QFETCH(double, y);
    QImage image(200, 100, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    const QImage before = image;
    QPainter painter(&image);
    plot_text(&painter, "far away", 0, Qt::AlignHCenter, Qt::AlignVCenter, true, x, y);
    plot_text(&painter, "far away", 90, Qt::AlignHCenter, Qt::AlignVCenter, true, x, y);
    painter.end();
    QCOMPARE(image, before);
}

KEST_TEST(PlotTextTest)
#include "tst_plot_text.moc"
