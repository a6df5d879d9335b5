#pragma once

#include <QFont>
#include <QList>
#include <QPointF>
#include <QString>

class QPainter;

/**
 * A table of strings, in device pixels. It is laid out while it is painted: the widths given are the
 * least, and the painter's font decides how much wider a column has to be.
 */
class StringGrid
{
public:
    /** Empties all cells; widths become 0 and alignments left. The row height stays. */
    void set_size(int rows, int cols);
    void set_col_width(int col, double width);
    void set_row_height(double height);
    /** Left, right or horizontal centre; anything else puts the column's texts at the page's left edge. */
    void set_col_alignment(int col, Qt::Alignment alignment);
    void set_text(int row, int col, QString new_text);
    void set_center_first_row(bool center);

    int get_total_width() const;
    int get_total_height() const;
    int get_num_rows() const;
    int get_num_cols() const;

    /** Draws all in the painter's pen and font; the font is left in the weight of the last cell. */
    void plot(QPainter* painter, QPointF top_left);

    /** Widens the columns that are too narrow for their texts; none is ever narrowed. */
    void ensure_text_will_fit(QPainter* painter);
    void plot_grid(QPainter* painter, QPointF top_left) const;
    void plot_text(QPainter* painter, QPointF top_left) const;

private:
    bool is_emphasized(int row, int col) const;
    /** The painter's own font in the weight of the cell. */
    void set_cell_font(QPainter* painter, int row, int col) const;
    Qt::Alignment cell_alignment(int row, int col) const;

    int num_rows = 0;
    int num_cols = 0;
    int row_height = 0;
    bool center_first_row = false;
    bool emphasize_first_col = true;
    bool emphasize_first_row = true;
    QList<QList<QString>> text;  ///< by row, then column
    QList<int> col_widths;
    QList<Qt::Alignment> col_alignments;
};
