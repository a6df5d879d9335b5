#pragma once

#include "charts/line_chart.h"

#include <QImage>
#include <QLine>
#include <QList>
#include <QPointF>
#include <QString>
#include <QVector>

class QPainter;

/**
 * The plainest program for the picture that LineChart paints: its layout is known beforehand. It
 * draws background, frame, gridlines and texts by direct calls under a clip rectangle, maps every
 * point in a plain loop and makes one drawPolyline a curve.
 */
class BareChart
{
public:
    /** Looks up the layout that `chart` has since its latest paint. */
    BareChart(const LineChart& new_chart, const QList<Series*>& new_series, double new_interval);

    void paint(QImage& image) const;

private:
    struct Text
    {
        QPointF at;
        QString text;
        double part_left;   ///< of the width that lies to the left of `at`
        double part_above;  ///< of the height that lies above it
        int rotation = 0;   ///< degrees, counter-clockwise
    };

    struct Gridline
    {
        Text label;
        QLine line;
    };

    static void draw(QPainter& painter, const Text& text);
    QPolygonF curve_of(const Series& series) const;
    QPolygonF smoothed_curve_of(const Series& series) const;

    const LineChart& chart;
    QList<Series*> series;
    double interval;
    QRect plot_area;
    QVector<Gridline> gridlines;
};
