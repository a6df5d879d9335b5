#pragma once

#include "charts/axis.h"

#include <QBrush>
#include <QList>
#include <QPen>
#include <QString>

class QPainter;

/** Values of one kind, counted into bins of equal width. */
class HistogramSeries
{
public:
    HistogramSeries(Axis* new_x_axis, Axis* new_y_axis);

    void add(double value);

    /**
     * Counts the values from the second on; the first one is never counted, on purpose. A value
     * without a bin is not counted either.
     */
    void populate_bins(double bin_width);

    int map_x(double x) const;
    int map_y(double y) const;

    /** Draws the bars as the part at position `index` of `count` equal parts of each bin. */
    void plot(QPainter* painter, double bin_width, int index, int count) const;

    Axis* y_axis;  ///< not owned: frequencies
    Axis* x_axis;  ///< not owned: values
    QPen pen;
    QBrush brush;
    QString name;          ///< text in the legend
    QList<double> values;  ///< in order of arrival
    QList<int> bins;       ///< counts, by bin
};
