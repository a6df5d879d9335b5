#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <Qt>

class QWidget;

/**
 * Places widgets in rows and columns on a parent, by position and without a layout. It owns none of
 * them: fill it, place them, throw it away.
 */
class WidgetGrid
{
public:
    /** Cells beyond the size are left alone when the widgets are placed. */
    void set_size(int new_rows, int new_cols);
    int get_rows() const;
    int get_cols() const;

    /** A column without an alignment lands at the left edge of the whole grid. */
    void set_col_alignment(int col, Qt::Alignment alignment);
    Qt::Alignment get_col_alignment(int col) const;

    void set_widget(int row, int col, QWidget* widget);
    /** Null for an empty cell. */
    QWidget* get_widget(int row, int col) const;

    /** Shows all widgets on `parent`; the totals are pixels, gaps to the right and below included. */
    void place_widgets(QWidget* parent, int& total_width, int& total_height);

private:
    struct Cell;

    void measure(int gap, QList<int>& heights, QList<int>& widths) const;
    void place(QWidget* parent, QWidget* widget, Qt::Alignment alignment, const Cell& cell) const;

    QMap<QPair<int, int>, QWidget*> widgets;  ///< by row and column
    QMap<int, Qt::Alignment> col_alignments;
    int rows = 0;
    int cols = 0;
};
