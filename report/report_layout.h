#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

/** Where everything stands on the page, in the pixels of a device of this resolution and size. */
struct ReportLayout
{
    ReportLayout(int new_resolution, QSize new_page);

    /** As wide as the page but for the margins, in the image's proportions; empty without an image. */
    QRectF header_image(QSize image) const;

    /** Anchors of the centred lines. */
    QPointF title() const;
    QPointF subtitle() const;

    QPoint table() const;
    /** Height of a row for text of this many points. */
    int table_row_height(int points) const;

    /** The two charts share what the table leaves, and touch. */
    QRect upper_chart(int table_height) const;
    QRect lower_chart(int table_height) const;
    double gridline_pixels() const;
    int dot_radius() const;

    /** Anchor of its lower right corner. */
    QPointF footer() const;

    int resolution;  ///< dots per inch
    QSize page;      ///< the printable part
};
