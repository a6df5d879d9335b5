#include "charts/axis.h"

#include "charts/plot_text.h"

#include <QFontInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

/** A mantissa of 1 gets a step of 2 on purpose: a step of 1 would crowd the labels. */
int step_for_mantissa(int mantissa)
{
    if (mantissa <= 2)
        return 2;
    return mantissa <= 5 ? 5 : 10;
}

}  // namespace

Axis::Axis(Side new_side) : side(new_side), direction(new_side <= BOTTOM ? 1 : -1)
{
}

double Axis::unmap_value(int pixel) const
{
    const qint64 distance = (static_cast<qint64>(pixel) - origin) * direction;
    return static_cast<double>(distance) / scale() + range.min;
}

void Axis::optimize_gridline_spacing(double pixels)
{
    const double raw = pixels / scale();
    if (!(raw > 0.0) || qIsInf(raw)) {
        gridline_spacing = 0.0;
        num_decimals = 0;
        return;
    }

    const int exponent = static_cast<int>(std::floor(std::log10(raw)));
    const double decade = std::pow(10.0, exponent);
    gridline_spacing = step_for_mantissa(to_pixel(raw / decade)) * decade;

    // From the exponent, not from the step: a step of 10 keeps one decimal more on purpose.
    num_decimals = exponent <= 0 ? -exponent : 0;

    range.include(std::floor(range.min / gridline_spacing) * gridline_spacing);
    range.include(std::ceil(range.max / gridline_spacing) * gridline_spacing);
}

void Axis::plot_caption(QPainter* painter, QRect rect) const
{
    const int px = painter->fontInfo().pixelSize();
    int x = (rect.left() + rect.right()) / 2;
    int y = (rect.top() + rect.bottom()) / 2;
    int rotation = 0;
    switch (side) {
    case TOP:
        y = rect.top() + px;
        break;
    case BOTTOM:
        y = rect.bottom() - px;
        break;
    case LEFT:
        x = rect.left() + px;
        rotation = 90;
        break;
    case RIGHT:
        x = rect.right() - px;
        rotation = 90;
        break;
    }
    plot_text(painter, caption, rotation, Qt::AlignHCenter, Qt::AlignVCenter, false, x, y);
}

bool Axis::has_grid() const
{
    constexpr double max_index = 1e9;
    constexpr double max_intervals = 1000;
    const double first = std::round(range.min / gridline_spacing);
    const double last = std::round(range.max / gridline_spacing);
    return gridline_spacing > 0.0 && qIsFinite(gridline_spacing) && std::abs(first) <= max_index &&
           std::abs(last) <= max_index && last - first <= max_intervals;
}

int Axis::min_gridline_index() const
{
    return to_pixel(std::round(range.min / gridline_spacing));
}

int Axis::max_gridline_index() const
{
    return to_pixel(std::round(range.max / gridline_spacing));
}

int Axis::num_intervals() const
{
    return to_pixel(static_cast<double>(max_gridline_index()) - min_gridline_index());
}

QString Axis::gridline_label(double value) const
{
    return QString::number(value, 'f', num_decimals);
}

void Axis::match_num_intervals(Axis* a, Axis* b)
{
    if (!a->in_use || !b->in_use || !a->has_grid() || !b->has_grid())
        return;
    const int count_a = a->num_intervals();
    const int count_b = b->num_intervals();
    if (count_a == count_b)
        return;
    Axis* const shorter = count_a < count_b ? a : b;
    shorter->range.include(shorter->gridline_spacing * std::max(count_a, count_b) +
                           shorter->range.min);
}

int Axis::get_max_caption_width(QFontMetrics metrics) const
{
    return in_use ? metrics.horizontalAdvance(gridline_label(range.max)) : 0;
}
