#pragma once

#include <QFont>
#include <QHash>
#include <QRect>
#include <QStaticText>
#include <QString>
#include <QVector>

class QPainter;

/** A line of text as it was laid out in some font: its glyphs, their extent and their ascent. */
struct ShapedText
{
    QStaticText glyphs;
    QRect bounds;  ///< pixels, from the start of the base line
    double ascent = 0.0;
};

/**
 * Texts as they were shaped when painters of pixels drew them last. A chart draws the same few dozen
 * labels at every repaint, and to find the glyphs and the extent of one costs several times what it
 * takes to paint it.
 */
class TextShapes
{
public:
    /** Those of all charts: never given back, since the last painter may outlive everything else. */
    static TextShapes& of_all_charts();

    /**
     * The text in the painter's font, at its device's resolution.
     *
     * @return null if it has to be drawn the plain way: on other devices, turned, or of an odd kind.
     *         It is valid until the next call.
     */
    const ShapedText* find(const QPainter& painter, const QString& text);

    int count() const;

private:
    /** The texts of one font at one resolution. */
    struct Typeface
    {
        QFont font;
        int dpi;
        QHash<QString, ShapedText> texts;
    };

    Typeface& typeface_of(const QPainter& painter);

    QVector<Typeface> typefaces;
};
