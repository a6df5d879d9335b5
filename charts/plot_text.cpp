#include "charts/plot_text.h"

#include <QFontMetrics>
#include <QPainter>

namespace
{

/** From the anchor to the text's start: nothing, half or all of its extent backward. */
double offset(int alignment, int centre_flag, int end_flag, int extent)
{
    if (alignment == end_flag)
        return -extent;
    if (alignment == centre_flag)
        return -extent / 2.0;
    return 0.0;
}

/** Reaches one pixel to each side of the text. */
QRect opaque_box(double dx, double dy, const QRect& bounds)
{
    return QRect(static_cast<int>(dx - 1.0), static_cast<int>(dy), bounds.width() + 2,
                 bounds.height());
}

}  // namespace

void plot_text(QPainter* painter, const QString& text, int rotation, int horizontal_alignment,
               int vertical_alignment, bool opaque, double x, double y)
{
    painter->save();
    painter->translate(x, y);
    painter->rotate(-rotation);

    const QRect bounds = painter->fontMetrics().boundingRect(text);
    const double dx =
        offset(horizontal_alignment, Qt::AlignHCenter, Qt::AlignRight, bounds.width());
    const double dy =
        offset(vertical_alignment, Qt::AlignVCenter, Qt::AlignBottom, bounds.height());
    if (opaque)
        painter->drawRect(opaque_box(dx, dy, bounds));
    painter->drawText(QPointF(dx, dy - bounds.top()), text);

    painter->restore();
}
