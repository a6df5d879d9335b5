#pragma once

#include "charts/line_chart.h"

#include <QLine>
#include <QList>
#include <QPixmap>
#include <QPointF>
#include <QRect>
#include <QString>

class QPainter;

/** A text and where its baseline begins. */
struct BareText
{
    QPointF at;
    QString text;
    int points = 8;
};

/**
 * What a page of results cannot do without, drawn by plain loops: the same image, texts, lines and
 * frames at known places, the same vertices of the curves, the same dots and bars.
 */
class BarePage
{
public:
    /** A chart in the layout of its latest plot; `rect` is the whole chart. */
    void add_chart(const LineChart& chart, QRect rect);

    /** Writes the file, everything new: printer, painter, image and all vertices. */
    void print(const QString& path) const;

    QString image;  ///< file name; empty for none
    QRectF image_rect;
    QList<BareText> texts;
    QList<QLine> lines;
    QList<const Series*> curves;
    QList<const Series*> dots;
    QList<const Series*> currents;  ///< of the dots
    QList<QRect> frames;

private:
    void draw_curves(QPainter& painter) const;
    void draw_dots(QPainter& painter) const;
};
