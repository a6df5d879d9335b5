#include "report/string_grid.h"

#include "charts/plot_text.h"
#include "common/truncated_int.h"

#include <QFontMetrics>
#include <QLine>
#include <QPainter>

#include <algorithm>
#include <numeric>

namespace
{
/** Left edge or middle or right edge of a cell, a blank inside of it. */
int anchor_x(Qt::Alignment alignment, int cell_x, int width, int space)
{
    if (alignment == Qt::AlignHCenter)
        return cell_x + width / 2;
    if (alignment == Qt::AlignRight)
        return cell_x + width - space;
    if (alignment == Qt::AlignLeft)
        return cell_x + space;
    return 0;
}

void draw_line(QPainter* painter, int x0, int y0, int x1, int y1)
{
    const QLine line(x0, y0, x1, y1);
    painter->drawLines(&line, 1);
}
}  // namespace

void StringGrid::set_size(int rows, int cols)
{
    num_rows = rows;
    num_cols = cols;
    text.clear();
    col_widths.clear();
    col_alignments.clear();
    QList<QString> empty_row;
    for (int col = 0; col < cols; ++col) {
        empty_row.append(QString());
        col_widths.append(0);
        col_alignments.append(Qt::AlignLeft);
    }
    for (int row = 0; row < rows; ++row)
        text.append(empty_row);
}

void StringGrid::set_col_width(int col, double width)
{
    col_widths[col] = truncated_int(width);
}

void StringGrid::set_row_height(double height)
{
    row_height = truncated_int(height);
}

void StringGrid::set_col_alignment(int col, Qt::Alignment alignment)
{
    col_alignments[col] = alignment;
}

void StringGrid::set_text(int row, int col, QString new_text)
{
    text[row][col] = new_text;
}

void StringGrid::set_center_first_row(bool center)
{
    center_first_row = center;
}

int StringGrid::get_total_width() const
{
    return std::accumulate(col_widths.begin(), col_widths.end(), 0);
}

int StringGrid::get_total_height() const
{
    return row_height * num_rows;
}

int StringGrid::get_num_rows() const
{
    return num_rows;
}

int StringGrid::get_num_cols() const
{
    return num_cols;
}

void StringGrid::plot(QPainter* painter, QPointF top_left)
{
    ensure_text_will_fit(painter);
    plot_grid(painter, top_left);
    plot_text(painter, top_left);
}

void StringGrid::ensure_text_will_fit(QPainter* painter)
{
    // Every text is measured in the weight found here on purpose: the second margin of the first
    // column is the room for its heavier one.
    const QFontMetrics metrics = painter->fontMetrics();
    const int margin = 2 * metrics.horizontalAdvance(' ');
    for (int col = 0; col < num_cols; ++col) {
        int widest = 0;
        for (int row = 0; row < num_rows; ++row) {
            set_cell_font(painter, row, col);
            widest = std::max(widest, metrics.horizontalAdvance(text[row][col]));
        }
        const int margins = col == 0 && emphasize_first_col ? 2 * margin : margin;
        col_widths[col] = std::max(col_widths[col], widest + margins);
    }
}

void StringGrid::plot_grid(QPainter* painter, QPointF top_left) const
{
    const int x0 = truncated_int(top_left.x());
    const int y0 = truncated_int(top_left.y());
    const int x1 = x0 + get_total_width();
    const int y1 = y0 + get_total_height();

    int y = y0;
    draw_line(painter, x0, y, x1, y);
    for (int row = 0; row < num_rows; ++row) {
        y += row_height;
        draw_line(painter, x0, y, x1, y);
    }

    int x = x0;
    draw_line(painter, x, y0, x, y1);
    for (const int width : col_widths) {
        x += width;
        draw_line(painter, x, y0, x, y1);
    }
}

void StringGrid::plot_text(QPainter* painter, QPointF top_left) const
{
    const QFontMetrics metrics = painter->fontMetrics();
    const int space = metrics.horizontalAdvance(' ');
    int y = truncated_int(top_left.y()) + (row_height - metrics.height()) / 2;
    for (int row = 0; row < num_rows; ++row) {
        int cell_x = truncated_int(top_left.x());
        for (int col = 0; col < num_cols; ++col) {
            const Qt::Alignment alignment = cell_alignment(row, col);
            set_cell_font(painter, row, col);
            ::plot_text(painter, text[row][col], 0, alignment, Qt::AlignTop, false,
                        anchor_x(alignment, cell_x, col_widths[col], space), y);
            cell_x += col_widths[col];
        }
        y += row_height;
    }
}

bool StringGrid::is_emphasized(int row, int col) const
{
    return (col == 0 && emphasize_first_col) || (row == 0 && emphasize_first_row);
}

void StringGrid::set_cell_font(QPainter* painter, int row, int col) const
{
    const QFont& present = painter->font();
    const int weight = is_emphasized(row, col) ? QFont::Medium : QFont::Normal;
    painter->setFont(QFont(present.family(), present.pointSize(), weight));
}

Qt::Alignment StringGrid::cell_alignment(int row, int col) const
{
    return row == 0 && center_first_row ? Qt::AlignHCenter : col_alignments[col];
}
