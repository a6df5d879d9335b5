#pragma once

#include <QPen>

/** The one style of all chart pens: solid, square caps, bevelled joins. */
QPen chart_pen(const QColor& colour, double width);

/** The same colour, half a typographic point wide at the device's resolution. */
QPen half_point_pen(const QPen& pen, int dpi);
