#pragma once

#include "charts/interval.h"
#include "charts/points/pixel.h"

#include <QFontMetrics>
#include <QString>

class QPainter;
class QRect;

enum Side
{
    TOP,
    BOTTOM,
    LEFT,
    RIGHT,
};

/** Maps data values to pixels and back, and chooses gridlines at round numbers. */
class Axis
{
public:
    explicit Axis(Side new_side);

    /** Pixel of a data value, truncated toward zero. */
    int map_value(double value) const
    {
        return pixel_map().map(value);
    }

    /**
     * The mapping as it stands now, for loops over many points. Without a span there is but one value
     * to show, and it lies at the origin.
     */
    PixelMap pixel_map() const
    {
        const double pixels_per_unit = range.max == range.min ? 0.0 : scale();
        return {pixels_per_unit, range.min, static_cast<double>(direction),
                static_cast<double>(origin)};
    }

    /** Pixels per data unit. */
    double scale() const
    {
        return length / (range.max - range.min);
    }

    double unmap_value(int pixel) const;

    /**
     * Chooses a spacing of 2, 5 or 10 times a power of ten, near `pixels` on the device, and snaps the
     * range outward to it. A range without span, or an axis without length, is left without a grid.
     */
    void optimize_gridline_spacing(double pixels);

    /** Draws the caption along its side of the whole chart, `rect`, in the painter's font. */
    void plot_caption(QPainter* painter, QRect rect) const;

    /** False if no gridlines can be drawn: no span, not finite, or more than anybody could read. */
    bool has_grid() const;

    int min_gridline_index() const;
    int max_gridline_index() const;
    int num_intervals() const;

    /** Text of the gridline value, with the decimals that the spacing asks for. */
    QString gridline_label(double value) const;

    /** Lengthens the axis with fewer intervals at its top, if both are in use. */
    static void match_num_intervals(Axis* a, Axis* b);

    /** Width of the label of the maximum, of that only; 0 if not in use. */
    int get_max_caption_width(QFontMetrics metrics) const;

    bool in_use = false;            ///< a plotted series uses the axis
    int origin = 0;                 ///< pixel of `range.min`
    int length = 0;                 ///< pixels
    double gridline_spacing = 0.0;  ///< data units; 0 if there is no grid
    Side side;
    QString caption;
    int num_decimals = 0;   ///< of the gridline labels
    Interval range;         ///< displayed
    Interval forced_range;  ///< finite ends are always shown while there is no zoom
    int direction = 1;      ///< -1 where pixels fall as values rise
};
