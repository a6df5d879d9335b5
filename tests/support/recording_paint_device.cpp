#include "support/recording_paint_device.h"

#include <QFont>
#include <QMap>
#include <QPainterPath>
#include <QPen>
#include <QRegion>
#include <QTransform>

namespace
{

QString text_of(double value)
{
    return QString::number(value + 0.0, 'g', 10);  // + 0.0: a negative zero is a zero
}

QString text_of(const QPointF& point)
{
    return text_of(point.x()) + ',' + text_of(point.y());
}

QString text_of(const QRectF& rect)
{
    return text_of(rect.topLeft()) + ' ' + text_of(rect.width()) + 'x' + text_of(rect.height());
}

QString text_of(const QColor& colour)
{
    return colour.name(colour.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb);
}

QString text_of(const QPen& pen)
{
    if (pen.style() == Qt::NoPen)
        return "none";
    return QString("%1 width %2 style %3 cap %4 join %5%6")
        .arg(text_of(pen.color()), text_of(pen.widthF()))
        .arg(pen.style())
        .arg(pen.capStyle(), 2, 16, QChar('0'))
        .arg(pen.joinStyle(), 2, 16, QChar('0'))
        .arg(pen.isCosmetic() ? " cosmetic" : "");
}

QString text_of(const QBrush& brush)
{
    if (brush.style() == Qt::NoBrush)
        return "none";
    return QString("%1 style %2").arg(text_of(brush.color())).arg(brush.style());
}

QString text_of(const QFont& font)
{
    return QString("%1 %2 points weight %3%4")
        .arg(font.family(), text_of(font.pointSizeF()))
        .arg(font.weight())
        .arg(font.italic() ? " italic" : "");
}

QString text_of(const QTransform& transform)
{
    return QString("%1 %2 %3 %4 at %5")
        .arg(text_of(transform.m11()), text_of(transform.m12()), text_of(transform.m21()),
             text_of(transform.m22()), text_of(QPointF(transform.dx(), transform.dy())));
}

class RecordingPaintEngine : public QPaintEngine
{
public:
    explicit RecordingPaintEngine(QStringList& new_lines)
        : QPaintEngine(AllFeatures), lines(new_lines)
    {
    }

    bool begin(QPaintDevice*) override
    {
        written.clear();
        present.clear();
        clip = "none";
        clipping = false;
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

    void updateState(const QPaintEngineState& new_state) override
    {
        const DirtyFlags changed = new_state.state();
        if (changed & DirtyPen)
            present["pen"] = text_of(new_state.pen());
        if (changed & DirtyBrush)
            present["brush"] = text_of(new_state.brush());
        if (changed & DirtyFont)
            present["font"] = text_of(new_state.font());
        if (changed & DirtyTransform)
            present["transform"] = text_of(new_state.transform());
        if (changed & DirtyClipRegion)
            clip = clip_text(new_state.clipOperation(), new_state.clipRegion().boundingRect());
        if (changed & DirtyClipPath)
            clip = clip_text(new_state.clipOperation(), new_state.clipPath().boundingRect());
        if (changed & DirtyClipEnabled)
            clipping = new_state.isClipEnabled();
        present["clip"] = clipping ? clip : "none";
    }

    void drawRects(const QRectF* rects, int count) override
    {
        for (int i = 0; i < count; ++i)
            write("rect", text_of(rects[i]));
    }

    void drawLines(const QLineF* drawn, int count) override
    {
        for (int i = 0; i < count; ++i)
            write("line", text_of(drawn[i].p1()) + ' ' + text_of(drawn[i].p2()));
    }

    void drawEllipse(const QRectF& rect) override
    {
        write("ellipse", text_of(rect));
    }

    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        QStringList corners;
        for (int i = 0; i < count; ++i)
            corners << text_of(points[i]);
        write(mode == PolylineMode ? "polyline" : "polygon", corners.join(' '));
    }

    void drawPath(const QPainterPath& path) override
    {
        write("path", text_of(path.boundingRect()));
    }

    void drawPixmap(const QRectF& target, const QPixmap&, const QRectF&) override
    {
        write("pixmap", text_of(target));
    }

    void drawTextItem(const QPointF& point, const QTextItem& item) override
    {
        write("text", text_of(point) + ' ' + item.text());
    }

private:
    static QString clip_text(Qt::ClipOperation operation, const QRectF& rect)
    {
        if (operation == Qt::NoClip)
            return "none";
        return (operation == Qt::IntersectClip ? "intersect " : "") + text_of(rect);
    }

    void write(const QString& word, const QString& rest)
    {
        for (auto it = present.constBegin(); it != present.constEnd(); ++it) {
            if (written.value(it.key()) != it.value())
                lines << it.key() + ' ' + it.value();
        }
        written = present;
        lines << word + ' ' + rest;
    }

    QStringList& lines;
    QMap<QString, QString> present;  ///< what is set now, by kind
    QMap<QString, QString> written;  ///< what was set at the latest drawing
    QString clip;
    bool clipping = false;
};

}  // namespace

RecordingPaintDevice::RecordingPaintDevice(int new_width, int new_height, int new_dpi)
    : width(new_width),
      height(new_height),
      dpi(new_dpi),
      engine(std::make_unique<RecordingPaintEngine>(lines))
{
}

RecordingPaintDevice::~RecordingPaintDevice() = default;

QPaintEngine* RecordingPaintDevice::paintEngine() const
{
    return engine.get();
}

QStringList RecordingPaintDevice::drawn(const QString& word) const
{
    QStringList found;
    for (const QString& line : lines) {
        if (line.startsWith(word + ' '))
            found << line.mid(word.size() + 1);
    }
    return found;
}

int RecordingPaintDevice::metric(PaintDeviceMetric which) const
{
    switch (which) {
    case PdmWidth:
        return width;
    case PdmHeight:
        return height;
    case PdmWidthMM:
        return qRound(width * 25.4 / dpi);
    case PdmHeightMM:
        return qRound(height * 25.4 / dpi);
    case PdmDpiX:
    case PdmDpiY:
    case PdmPhysicalDpiX:
    case PdmPhysicalDpiY:
        return dpi;
    case PdmDepth:
        return 32;
    case PdmDevicePixelRatio:
        return 1;
    case PdmDevicePixelRatioScaled:
        return qRound(devicePixelRatioFScale());
    default:
        return QPaintDevice::metric(which);
    }
}
