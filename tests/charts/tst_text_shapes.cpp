#include "charts/plot_text.h"
#include "charts/text_shapes.h"
#include "support/recording_paint_device.h"
#include "support/test_program.h"

#include <QImage>
#include <QPainter>
#include <QtTest>

/** How a text is drawn: in which font, turned by how much, on how fine a device, how much enlarged. */
struct Look
{
    QFont font = QFont("Helvetica", 8);
    int rotation = 0;
    int dots_per_meter = 3780;
    double zoom = 1.0;
};

Q_DECLARE_METATYPE(Look)

class TextShapesTest : public QObject
{
    Q_OBJECT

private slots:
    void texts_look_as_when_drawn_the_plain_way_data();
    void texts_look_as_when_drawn_the_plain_way();
    void fonts_and_resolutions_have_shapes_of_their_own();
    void a_text_is_shaped_once();
    void what_is_not_plain_is_left_to_the_painter_data();
    void what_is_not_plain_is_left_to_the_painter();
    void other_devices_are_left_to_the_painter();
    void numbers_without_end_do_not_pile_up();
    void fonts_without_end_do_not_pile_up();
};

namespace
{

constexpr double ANCHOR_X = 150.0;
constexpr double ANCHOR_Y = 60.5;

/** Laid out on two lines, and drawn at a point on one. */
const QString LINE_SEPARATED = QString("a") + QChar(QChar::LineSeparator) + "b";

QImage blank(const Look& look)
{
    QImage image(400, 200, QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(look.dots_per_meter);
    image.setDotsPerMeterY(look.dots_per_meter);
    image.fill(Qt::white);
    return image;
}

template <typename Draw> QImage drawn(const Look& look, Draw draw)
{
    QImage image = blank(look);
    QPainter painter(&image);
    painter.scale(look.zoom, look.zoom);
    painter.setFont(look.font);
    painter.setPen(QColor(200, 0, 40));
    draw(painter);
    return image;
}

/** Right-aligned above its anchor, without any detour. */
QImage drawn_plainly(const Look& look, const QString& text)
{
    return drawn(look, [&](QPainter& painter) {
        painter.translate(ANCHOR_X, ANCHOR_Y);
        painter.rotate(-look.rotation);
        const QRect bounds = painter.fontMetrics().boundingRect(text);
        const double corner_y = -bounds.height() / 2.0;
        painter.drawText(QPointF(-bounds.width(), corner_y - bounds.top()), text);
    });
}

QImage drawn_by_plot_text(const Look& look, const QString& text)
{
    return drawn(look, [&](QPainter& painter) {
        plot_text(&painter, text, look.rotation, Qt::AlignRight, Qt::AlignVCenter, false, ANCHOR_X,
                  ANCHOR_Y);
    });
}

QFont with_line(QFont font, void (QFont::*line)(bool) = &QFont::setUnderline)
{
    (font.*line)(true);
    return font;
}

}  // namespace

void TextShapesTest::texts_look_as_when_drawn_the_plain_way_data()
{
    QTest::addColumn<Look>("look");
    QTest::addColumn<QString>("text");

    const QFont label("Helvetica", 8);
    const QFont caption("Helvetica", 10);
    const QPair<const char*, Look> looks[] = {
        {"label", {label}},
        {"caption", {caption}},
        {"turned", {caption, 90}},
        {"fine device", {label, 0, 11811}},
        {"enlarged", {label, 0, 3780, 1.5}},
        {"underlined", {with_line(label)}},
        {"bold", {QFont("Helvetica", 9, QFont::Bold)}},
    };
    const QString texts[] = {
        "0.5",
        "-12",
        "10:3",
        "Amp-Hours (Ah)",
        QString("Internal Resistance (m%1)").arg(QChar(0x2126)),
        QString::fromUtf8("\u05e9\u05dc\u05d5\u05dd 12"),
        QString::fromUtf8("e\u0301te\u0301 \u6d4b\u8bd5"),
        "<b>Pack</b> &amp; 1",
        "  spaces  ",
        "a\tb",
        "a\nb",
        LINE_SEPARATED,
        "",
        QString("0123456789").repeated(8),
    };
    for (const auto& [name, look] : looks) {
        for (const QString& text : texts)
            QTest::addRow("%s: %s", name, qPrintable(text.left(20))) << look << text;
    }
}

void TextShapesTest::texts_look_as_when_drawn_the_plain_way()
{
    QFETCH(Look, look);
    QFETCH(QString, text);
    const QImage expected = drawn_plainly(look, text);
    QCOMPARE(drawn_by_plot_text(look, text), expected);
    QCOMPARE(drawn_by_plot_text(look, text), expected);
}

void TextShapesTest::fonts_and_resolutions_have_shapes_of_their_own()
{
    const Look coarse;
    const Look fine{coarse.font, 0, 7560};
    const Look large{QFont("Helvetica", 12)};
    for (const Look& look : {coarse, fine, large, coarse, fine, large})
        QCOMPARE(drawn_by_plot_text(look, "12.5"), drawn_plainly(look, "12.5"));
    QVERIFY(drawn_plainly(coarse, "12.5") != drawn_plainly(fine, "12.5"));
}

void TextShapesTest::a_text_is_shaped_once()
{
    QImage image = blank({});
    QPainter painter(&image);
    TextShapes shapes;
    const ShapedText* const first = shapes.find(painter, "7.25");
    QVERIFY(first != nullptr);
    QCOMPARE(first->bounds, painter.fontMetrics().boundingRect("7.25"));
    QCOMPARE(shapes.find(painter, "7.25"), first);
}

void TextShapesTest::what_is_not_plain_is_left_to_the_painter_data()
{
    QTest::addColumn<Look>("look");
    QTest::addColumn<QString>("text");
    QTest::newRow("a tab") << Look() << "a\tb";
    QTest::newRow("two lines") << Look() << "a\nb";
    QTest::newRow("a line separator") << Look() << LINE_SEPARATED;
    QTest::newRow("long") << Look() << QString(65, 'x');
    QTest::newRow("turned") << Look{QFont(), 90} << "1";
    QTest::newRow("underlined") << Look{with_line(QFont())} << "1";
    QTest::newRow("overlined") << Look{with_line(QFont(), &QFont::setOverline)} << "1";
    QTest::newRow("struck out") << Look{with_line(QFont(), &QFont::setStrikeOut)} << "1";
}

void TextShapesTest::what_is_not_plain_is_left_to_the_painter()
{
    QFETCH(Look, look);
    QFETCH(QString, text);
    QImage image = blank(look);
    QPainter painter(&image);
    painter.setFont(look.font);
    painter.rotate(look.rotation);
    QVERIFY(TextShapes().find(painter, text) == nullptr);
}

void TextShapesTest::other_devices_are_left_to_the_painter()
{
    RecordingPaintDevice device(400, 200);
    QPainter painter(&device);
    QVERIFY(TextShapes().find(painter, "1") == nullptr);
}

/** A chart that grows for weeks has labels without end, and a user any number of fonts. */
void TextShapesTest::numbers_without_end_do_not_pile_up()
{
    QImage image = blank({});
    QPainter painter(&image);
    TextShapes shapes;
    for (int i = 0; i < 5000; ++i)
        QVERIFY(shapes.find(painter, QString::number(i)) != nullptr);
    QCOMPARE(shapes.count(), 1000);
    QCOMPARE(shapes.find(painter, "12")->bounds, painter.fontMetrics().boundingRect("12"));
}

void TextShapesTest::fonts_without_end_do_not_pile_up()
{
    QImage image = blank({});
    QPainter painter(&image);
    TextShapes shapes;
    for (int points = 1; points <= 40; ++points) {
        painter.setFont(QFont("Helvetica", points));
        QCOMPARE(shapes.find(painter, "12")->bounds, painter.fontMetrics().boundingRect("12"));
    }
    QCOMPARE(shapes.count(), 8);
}

KEST_TEST(TextShapesTest)
#include "tst_text_shapes.moc"
