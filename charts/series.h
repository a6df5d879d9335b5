#pragma once

#include "charts/axis.h"
#include "charts/interval.h"

#include <QList>
#include <QMutex>
#include <QPen>
#include <QPoint>
#include <QPointF>
#include <QPolygonF>
#include <QString>

class QPainter;

enum ChartStyle
{
    LINES,  ///< one polyline, averaged in buckets if wanted
    DOTS,   ///< one filled circle per point, never averaged
};

/** One curve: its points in data units, its axes, its pen and its label. */
class Series
{
public:
    Series();
    ~Series();

    Axis* get_x_axis() const;
    Axis* get_y_axis() const;

    /** A side that does not fit is a programming error and ends the process. */
    void set_axes(Axis* new_x_axis, Axis* new_y_axis);

    void add(double x, double y);

    /** 0.0 for an empty series. */
    double avg_y() const;

    /**
     * Index of a point with exactly this x, else the bitwise complement of the index of the last
     * point below it. -1 for an empty series. Below every point the complement is 0, which cannot be
     * told from a hit on the first point. The points must be ascending in x.
     */
    int binary_search(double x) const;

    int map_x(double x) const;
    int map_y(double y) const;
    double unmap_x(int x) const;
    double unmap_y(int y) const;
    QPoint map_point(QPointF point) const;
    QPointF unmap_point(QPoint point) const;

    /**
     * Draws the curve through its axes.
     *
     * @param averaging_interval width of the averaged buckets in data units of x; 0 for every sample
     * @param print takes a pen of half a point instead of `pen`'s width
     */
    void plot(QPainter* painter, ChartStyle style, double averaging_interval, int dot_radius,
              int dpi, bool print) const;

    Axis* x_axis = nullptr;  ///< not owned, top or bottom
    Axis* y_axis = nullptr;  ///< not owned, left or right
    QList<QPointF> points;   ///< in order of arrival, x expected not to fall
    bool visible = true;     ///< false: neither drawn nor part of the axes' ranges
    QPen pen;
    QString name;
    Interval x_range;  ///< of all x ever added
    Interval y_range;  ///< of all y ever added
    QMutex mutex;      ///< nothing takes it: one thread does everything
};

/** Moving average: size minus `window` points; a polygon shorter than `window` as it is. */
QPolygonF smooth(QPolygonF polygon, int window);

/** Mean x and mean y; NaN for an empty polygon. */
QPointF polyline_average(QPolygonF polygon);

/** A disc in the colour of the painter's pen. */
void plot_dot(QPainter* painter, QPoint centre, int radius);
