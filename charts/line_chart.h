#pragma once

#include "charts/axis.h"
#include "charts/interval.h"
#include "charts/series.h"

#include <QFont>
#include <QList>
#include <QPen>
#include <QRect>
#include <QString>

class QPainter;

/** What a zoomed chart shows, in data units. */
struct ZoomInterval
{
    Interval x;
    Interval y;
};

/**
 * Paints a list of curves into a rectangle of any painter: screen or paper. It keeps no curves. The
 * axes hold the layout of the latest paint, for unmapping what the mouse does.
 */
class LineChart
{
public:
    LineChart();
    ~LineChart();
    LineChart(const LineChart&) = delete;  // the lists of axes point into the object
    LineChart& operator=(const LineChart&) = delete;

    /** A new curve, owned by the caller. Null axes mean the bottom and the left one. */
    Series* add_series(QString name, Axis* x_axis, Axis* y_axis);

    /** Ranges and use of all axes: what the curves and forced ends need, or the zoom if not null. */
    void calc_axis_min_max(QList<Series*> series, ZoomInterval* zoom);

    void calc_axis_gridline_spacings(double pixels);

    void plot_axis_captions(QPainter* painter, QRect rect) const;

    /** Room for the gridline labels; sets `label_font`. */
    void get_max_caption_sizes(QPainter* painter, int& left, int& top, int& right,
                               int& bottom) const;

    /** Labels and gridlines of the plot area, `rect`. */
    void plot_gridlines(QPainter* painter, QRect rect, int dpi, bool print) const;

    /**
     * Paints the whole chart with its margins into `rect`.
     *
     * @param gridline_pixels wanted distance between gridlines on the device
     * @param averaging_interval buckets of the curves in data units of x; 0 for every sample
     * @param dpi the device's resolution
     * @param print pens for paper
     * @param zoom null to show everything
     */
    void plot(QList<Series*> series, QPainter* painter, QRect rect, double gridline_pixels,
              ChartStyle style, double averaging_interval, int dot_radius, int dpi, bool print,
              ZoomInterval* zoom);

    void lock_all_series(QList<Series*> series);
    void unlock_all_series(QList<Series*> series);

    Axis* x_axes[2];  ///< bottom, top
    Axis* y_axes[2];  ///< left, right
    Axis* axes[4];    ///< bottom, top, left, right
    QPen text_pen;    ///< labels and captions
    QPen frame_pen;
    QPen grid_pen;
    QString font_family;
    QFont label_font;    ///< of the gridline labels, and the measure of all margins
    QFont caption_font;  ///< of the axes' captions
    Axis top_axis;       ///< its caption is the chart's title
    Axis bottom_axis;
    Axis left_axis;
    Axis right_axis;

private:
    /** Pixels to leave free on each side. */
    struct Sides
    {
        int left;
        int top;
        int right;
        int bottom;
    };

    Sides margins(int px) const;
    void place_axes(QRect plot_area);
    void fit_grids(double gridline_pixels);
    QRect lay_out(QPainter* painter, QRect rect, double gridline_pixels,
                  const QList<Series*>& series, ZoomInterval* zoom);
    QPen frame_pen_for(int dpi, bool print) const;
    void plot_x_gridlines(QPainter* painter, QRect rect, const Axis& axis, double half,
                          const QPen& line_pen) const;
    void plot_y_gridlines(QPainter* painter, QRect rect, const Axis& axis, double half) const;
};
