#include "common/widget_grid.h"

#include <QComboBox>
#include <QLabel>

#include <numeric>

/** Where a cell lies, and how much room it has with its gap. */
struct WidgetGrid::Cell
{
    int x;
    int y;
    int width;
    int height;
};

namespace
{
/** The width of a blank in the application's font. */
int gap_between_cells()
{
    static const QLabel& blank = *new QLabel(" ");
    static const int gap = blank.minimumSizeHint().width();
    return gap;
}

/** A combo box keeps the width that its owner gave it. */
QSize size_in_grid(const QWidget* widget)
{
    const QSize hint = widget->minimumSizeHint();
    return {qobject_cast<const QComboBox*>(widget) != nullptr ? widget->width() : hint.width(),
            hint.height()};
}

int left_edge(Qt::Alignment alignment, int x, int room, int width)
{
    switch (int(alignment)) {
    case Qt::AlignLeft:
    case Qt::AlignJustify:
        return x;
    case Qt::AlignRight:
        return x + room - width;
    case Qt::AlignHCenter:
        return x + (room - width) / 2;
    default:
        return 0;
    }
}

int sum(const QList<int>& sizes)
{
    return std::accumulate(sizes.begin(), sizes.end(), 0);
}
}  // namespace

void WidgetGrid::set_size(int new_rows, int new_cols)
{
    rows = new_rows;
    cols = new_cols;
}

int WidgetGrid::get_rows() const
{
    return rows;
}

int WidgetGrid::get_cols() const
{
    return cols;
}

void WidgetGrid::set_col_alignment(int col, Qt::Alignment alignment)
{
    col_alignments.insert(col, alignment);
}

Qt::Alignment WidgetGrid::get_col_alignment(int col) const
{
    return col_alignments.value(col, Qt::AlignLeft);
}

void WidgetGrid::set_widget(int row, int col, QWidget* widget)
{
    widgets.insert({row, col}, widget);
}

QWidget* WidgetGrid::get_widget(int row, int col) const
{
    return widgets.value({row, col}, nullptr);
}

void WidgetGrid::place_widgets(QWidget* parent, int& total_width, int& total_height)
{
    const int gap = gap_between_cells();
    QList<int> heights;
    QList<int> widths;
    measure(gap, heights, widths);
    int y = 0;
    for (int row = 0; row < rows; ++row) {
        int x = 0;
        for (int col = 0; col < cols; ++col) {
            // A missing alignment is none here, and not the left that get_col_alignment tells.
            if (QWidget* widget = get_widget(row, col))
                place(parent, widget, col_alignments.value(col),
                      {x, y, widths.at(col), heights.at(row)});
            x += widths.at(col);
        }
        y += heights.at(row);
    }
    total_width = sum(widths);
    total_height = sum(heights);
}

/** Both at once: asking a widget for its hint is what a placement mostly costs. */
void WidgetGrid::measure(int gap, QList<int>& heights, QList<int>& widths) const
{
    for (int row = 0; row < rows; ++row)
        heights.append(gap);
    for (int col = 0; col < cols; ++col)
        widths.append(gap);
    for (int row = 0; row < rows; ++row) {
        for (int col = 0; col < cols; ++col) {
            const QWidget* widget = get_widget(row, col);
            if (widget == nullptr)
                continue;
            const QSize size = size_in_grid(widget);
            heights[row] = qMax(heights.at(row), size.height() + gap);
            widths[col] = qMax(widths.at(col), size.width() + gap);
        }
    }
}

void WidgetGrid::place(QWidget* parent, QWidget* widget, Qt::Alignment alignment,
                       const Cell& cell) const
{
    widget->setParent(parent);
    widget->setVisible(true);
    const QSize size = size_in_grid(widget);
    const int left = left_edge(alignment, cell.x, cell.width, size.width());
    if (alignment != Qt::Alignment(Qt::AlignJustify))
        widget->setFixedSize(size);
    widget->move(left, cell.y + (cell.height - size.height()) / 2);
}
