#pragma once

#include "charts/axis.h"
#include "charts/histogram_series.h"

#include <QFont>
#include <QList>
#include <QPen>
#include <QRect>
#include <QString>

class QPainter;

/** A bar chart of how often values occur. The series share each bin side by side. */
class Histogram
{
public:
    Histogram();
    Histogram(const Histogram&) = delete;  // its series point to its axes
    Histogram& operator=(const Histogram&) = delete;

    /** A new series, owned by the caller; the chart keeps the pointer. */
    HistogramSeries* add_series(QString name);

    /** Draws into the plot area, `rect`; all labels fall outside of it. */
    void plot(QPainter* painter, QRect rect);

    QString font_family;
    QFont label_font;
    QFont caption_font;              ///< held; the captions are drawn in `label_font`
    QList<HistogramSeries*> series;  ///< not owned
    int first_bin = 0;               ///< lowest bin shown
    int last_bin = -1;               ///< highest bin shown; below `first_bin` if there is none
    QPen text_pen;
    QPen frame_pen;
    QPen grid_pen;                ///< held; there are no gridlines
    double bin_width = 1.0;       ///< data units
    double frequency_step = 1.0;  ///< between ticks
    Axis x_axis;
    Axis y_axis;

private:
    void calc_bins();
    void calc_frequencies();
    void plot_bin_ticks(QPainter* painter, QRect rect, int tick) const;
    void plot_frequency_ticks(QPainter* painter, QRect rect, int tick) const;
    void plot_legend(QPainter* painter, QRect rect, int px) const;
};
