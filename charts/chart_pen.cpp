#include "charts/chart_pen.h"

QPen chart_pen(const QColor& colour, double width)
{
    return QPen(QBrush(colour), width, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

QPen half_point_pen(const QPen& pen, int dpi)
{
    return chart_pen(pen.color(), dpi * 0.5 / 72.0);
}
