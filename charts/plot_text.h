#pragma once

#include <QString>

class QPainter;

/**
 * Draws one line of text at an anchor, in the painter's font and pen.
 *
 * @param rotation degrees, counter-clockwise on screen
 * @param horizontal_alignment exactly `Qt::AlignRight` or `Qt::AlignHCenter`; anything else, combined
 *                             flags too, starts at the anchor
 * @param vertical_alignment exactly `Qt::AlignBottom` or `Qt::AlignVCenter`; anything else hangs
 *                           below the anchor
 * @param opaque draws a box in the current pen and brush behind the text
 */
void plot_text(QPainter* painter, const QString& text, int rotation, int horizontal_alignment,
               int vertical_alignment, bool opaque, double x, double y);
