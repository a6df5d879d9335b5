#include "charts/text_shapes.h"

#include <QFontMetrics>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QTextLayout>
#include <QTransform>

#include <algorithm>

namespace
{

constexpr int LONGEST_TEXT = 64;
constexpr int MOST_TEXTS = 2000;  ///< in one font: more are numbers that nobody will see again
constexpr int MOST_TYPEFACES = 16;

bool is_raster(const QPainter& painter)
{
    const QPaintEngine* const engine = painter.paintEngine();
    return engine != nullptr && engine->type() == QPaintEngine::Raster;
}

bool has_lines(const QFont& font)
{
    return font.underline() || font.overline() || font.strikeOut();
}

bool is_plain(const QString& text)
{
    // A line separator counts as printable, but a layout begins a new line with it.
    const auto has_glyph = [](QChar letter) {
        return letter.isPrint() && letter != QChar::LineSeparator;
    };
    return text.size() <= LONGEST_TEXT && std::all_of(text.begin(), text.end(), has_glyph);
}

double ascent_of(const QString& text, const QFont& font)
{
    QTextLayout layout(text, font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    return line.isValid() ? line.ascent() : 0.0;
}

ShapedText shape(const QPainter& painter, const QString& text)
{
    ShapedText shaped{QStaticText(text), painter.fontMetrics().boundingRect(text),
                      ascent_of(text, painter.font())};
    shaped.glyphs.setTextFormat(Qt::PlainText);
    shaped.glyphs.prepare(QTransform(), painter.font());
    return shaped;
}

}  // namespace

TextShapes& TextShapes::of_all_charts()
{
    static auto& shapes = *new TextShapes;
    return shapes;
}

const ShapedText* TextShapes::find(const QPainter& painter, const QString& text)
{
    if (!is_raster(painter) || painter.transform().isRotating() || has_lines(painter.font()) ||
        !is_plain(text))
        return nullptr;
    QHash<QString, ShapedText>& texts = typeface_of(painter).texts;
    const auto found = texts.constFind(text);
    if (found != texts.constEnd())
        return &*found;
    if (texts.size() == MOST_TEXTS)
        texts.clear();
    return &*texts.insert(text, shape(painter, text));
}

int TextShapes::count() const
{
    int sum = 0;
    for (const Typeface& typeface : typefaces)
        sum += typeface.texts.size();
    return sum;
}

/** Fonts compare equal at any resolution, though their pixels differ. */
TextShapes::Typeface& TextShapes::typeface_of(const QPainter& painter)
{
    const int dpi = painter.device()->logicalDpiY();
    const auto found =
        std::find_if(typefaces.begin(), typefaces.end(), [&painter, dpi](const Typeface& one) {
            return one.dpi == dpi && one.font == painter.font();
        });
    if (found != typefaces.end())
        return *found;
    if (typefaces.size() == MOST_TYPEFACES)
        typefaces.clear();
    typefaces.append({painter.font(), dpi, {}});
    return typefaces.last();
}
