#include "bare_page.h"

#include <QPainter>
#include <QPrinter>

#include <algorithm>

namespace
{
constexpr double BUCKET = 0.2;
constexpr int DOT_RADIUS = 9;
constexpr double HALF_A_POINT = 600 * 0.5 / 72.0;

/** Data units to pixels, its four numbers taken once. */
struct Map
{
    explicit Map(const Axis& axis)
        : scale(axis.scale() * axis.direction), minimum(axis.range.min), origin(axis.origin)
    {
    }

    int operator()(double value) const
    {
        return int(scale * (value - minimum) + origin);
    }

    double scale;
    double minimum;
    double origin;
};

QPolygonF smoothed(const Series& curve)
{
    const Map x(*curve.x_axis);
    const Map y(*curve.y_axis);
    QPolygonF polygon;
    polygon.append(QPointF(x(curve.points.first().x()), y(curve.points.first().y())));
    double sum_x = 0.0;
    double sum_y = 0.0;
    int count = 0;
    double boundary = BUCKET;
    for (const QPointF& point : curve.points) {
        if (point.x() > boundary) {
            polygon.append(QPointF(x(sum_x / count), y(sum_y / count)));
            sum_x = 0.0;
            sum_y = 0.0;
            count = 0;
            boundary += BUCKET;
        }
        sum_x += point.x();
        sum_y += point.y();
        ++count;
    }
    polygon.append(QPointF(x(sum_x / count), y(sum_y / count)));
    polygon.append(QPointF(x(curve.points.last().x()), y(curve.points.last().y())));
    return polygon;
}

/** The current at the very same amp-hours; every reading of the bench has one. */
double current_at(const QList<QPointF>& currents, double amp_hours)
{
    const auto found =
        std::lower_bound(currents.begin(), currents.end(), amp_hours,
                         [](const QPointF& point, double x) { return point.x() < x; });
    return found->y();
}
}  // namespace

void BarePage::add_chart(const LineChart& chart, QRect rect)
{
    const Axis& x_axis = chart.bottom_axis;
    const Axis& y_axis = chart.left_axis;
    const QRect plot_area(x_axis.origin, y_axis.origin - y_axis.length + 1, x_axis.length,
                          y_axis.length);
    frames << plot_area;
    for (int i = x_axis.min_gridline_index(); i <= x_axis.max_gridline_index(); ++i) {
        const double value = i * x_axis.gridline_spacing;
        const int x = x_axis.map_value(value);
        lines << QLine(x, plot_area.bottom(), x, plot_area.top());
        texts << BareText{QPointF(x - 50, plot_area.bottom() + 96), x_axis.gridline_label(value)};
    }
    for (int i = y_axis.min_gridline_index(); i <= y_axis.max_gridline_index(); ++i) {
        const double value = i * y_axis.gridline_spacing;
        const int y = y_axis.map_value(value);
        lines << QLine(plot_area.left(), y, plot_area.right(), y);
        texts << BareText{QPointF(plot_area.left() - 120, y + 23), y_axis.gridline_label(value)};
    }
    const QPoint centre = rect.center();
    texts << BareText{QPointF(centre.x() - 300, rect.top() + 110), chart.top_axis.caption, 10}
          << BareText{QPointF(centre.x() - 300, rect.bottom() - 55), chart.bottom_axis.caption, 10}
          << BareText{QPointF(rect.left(), centre.y()), chart.left_axis.caption, 10};
}

void BarePage::draw_curves(QPainter& painter) const
{
    painter.setPen(QPen(Qt::black, HALF_A_POINT, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin));
    for (const Series* const curve : curves)
        painter.drawPolyline(smoothed(*curve));
}

void BarePage::draw_dots(QPainter& painter) const
{
    painter.setBrush(Qt::black);
    for (int i = 0; i < dots.size(); ++i) {
        const Map x(*dots[i]->x_axis);
        const Map y(*dots[i]->y_axis);
        for (const QPointF& point : dots[i]->points) {
            const QPoint centre(x(point.x()), y(point.y()));
            painter.drawEllipse(centre, DOT_RADIUS, DOT_RADIUS);
            const double bar = 150.0 / current_at(currents[i]->points, point.x());
            painter.drawLine(centre.x(), y(point.y() + bar), centre.x(), y(point.y() - bar));
        }
    }
    painter.setBrush(Qt::NoBrush);
}

void BarePage::print(const QString& path) const
{
    QPrinter printer(QPrinter::ScreenResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printer.setPageSize(QPageSize(QPageSize::Letter));
    printer.setResolution(600);
    QPainter painter(&printer);
    if (!image.isEmpty()) {
        const QPixmap pixmap(image);
        painter.drawPixmap(image_rect, pixmap, QRectF(pixmap.rect()));
    }
    int points = 0;
    for (const BareText& text : texts) {
        if (text.points != points)
            painter.setFont(QFont("Helvetica", points = text.points));
        painter.drawText(text.at, text.text);
    }
    painter.drawLines(lines.toVector());
    draw_curves(painter);
    draw_dots(painter);
    for (const QRect& frame : frames)
        painter.drawRect(frame);
}
