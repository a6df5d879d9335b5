#include "report/report_layout.h"

#include "common/truncated_int.h"

ReportLayout::ReportLayout(int new_resolution, QSize new_page)
    : resolution(new_resolution), page(new_page)
{
}

QRectF ReportLayout::header_image(QSize image) const
{
    if (image.isEmpty())
        return QRectF();
    const int left = 3 * resolution / 4;
    const int width = page.width() - 2 * left;
    const double proportion = static_cast<double>(image.height()) / image.width();
    return QRectF(left, resolution / 2, width, truncated_int(proportion * width));
}

QPointF ReportLayout::title() const
{
    return QPointF(page.width() * 0.5, 3 * resolution / 2);
}

QPointF ReportLayout::subtitle() const
{
    return QPointF(page.width() * 0.5, 3 * resolution / 2 + 2 * (resolution / 4));
}

QPoint ReportLayout::table() const
{
    return QPoint(3 * resolution / 4, 3 * resolution / 2 + 4 * (resolution / 4));
}

int ReportLayout::table_row_height(int points) const
{
    return truncated_int(points * resolution * 1.5 / 72);
}

QRect ReportLayout::upper_chart(int table_height) const
{
    const int margin = resolution / 2;
    const int table_bottom = table().y() + table_height;
    const int chart_height = (page.height() - table_bottom - 2 * margin) / 2;
    return QRect(margin, table_bottom + margin, page.width() - 2 * margin, chart_height);
}

QRect ReportLayout::lower_chart(int table_height) const
{
    const QRect upper = upper_chart(table_height);
    return upper.translated(0, upper.height());
}

double ReportLayout::gridline_pixels() const
{
    return resolution * 0.5;
}

int ReportLayout::dot_radius() const
{
    return resolution / 64;
}

QPointF ReportLayout::footer() const
{
    return QPointF(page.width() - resolution / 2, page.height() - resolution / 2);
}
