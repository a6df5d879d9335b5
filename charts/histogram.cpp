#include "charts/histogram.h"

#include "charts/chart_pen.h"
#include "charts/plot_text.h"

#include <QFontInfo>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace
{

/** More than any device has pixels: beyond that a scale has no ticks. */
constexpr double MAX_TICKS = 10000;

}  // namespace

Histogram::Histogram()
    : font_family("Helvetica"),
      label_font(font_family, 8),
      caption_font(font_family, 10),
      text_pen(chart_pen(Qt::black, 0.0)),
      frame_pen(chart_pen(Qt::black, 1.0)),
      grid_pen(chart_pen(Qt::lightGray, 0.0)),
      x_axis(BOTTOM),
      y_axis(LEFT)
{
    y_axis.caption = "Frequency";
}

HistogramSeries* Histogram::add_series(QString name)
{
    auto* const added = new HistogramSeries(&x_axis, &y_axis);
    added->name = name;
    series.append(added);
    return added;
}

/** Snaps the range of values outward to whole bins. Without values there are no bins. */
void Histogram::calc_bins()
{
    const double first = std::floor(x_axis.range.min / bin_width);
    const double last = std::ceil(x_axis.range.max / bin_width);
    const bool countable = std::abs(first) <= 1e9 && std::abs(last) <= 1e9;
    if (!countable || last - first > MAX_TICKS) {
        first_bin = 0;
        last_bin = -1;
        return;
    }
    first_bin = static_cast<int>(first);
    last_bin = static_cast<int>(last);
    x_axis.range.include(first_bin * bin_width);
    x_axis.range.include(last_bin * bin_width);
}

/** From 0 to the greatest count, snapped outward to whole steps. */
void Histogram::calc_frequencies()
{
    y_axis.range.clear();
    y_axis.range.include(0.0);
    for (HistogramSeries* const one : qAsConst(series)) {
        one->populate_bins(bin_width);
        const int shown = std::min(last_bin, one->bins.size());
        for (int bin = 0; bin < shown; ++bin)
            y_axis.range.include(one->bins.at(bin));
    }
    const double low = std::floor(y_axis.range.min / frequency_step) * frequency_step;
    const double high = std::ceil(y_axis.range.max / frequency_step) * frequency_step;
    y_axis.range.include(low);
    y_axis.range.include(high);
}

void Histogram::plot_bin_ticks(QPainter* painter, QRect rect, int tick) const
{
    for (int i = first_bin; i <= last_bin; ++i) {
        const double value = i * bin_width;
        const int x = x_axis.map_value(value);
        painter->setPen(text_pen);
        plot_text(painter, x_axis.gridline_label(value), 90, Qt::AlignRight, Qt::AlignVCenter,
                  false, x, rect.bottom() + 2 * tick);
        painter->setPen(frame_pen);
        painter->drawLine(x, rect.bottom(), x, rect.bottom() + tick);
    }
}

void Histogram::plot_frequency_ticks(QPainter* painter, QRect rect, int tick) const
{
    const double steps = std::round(y_axis.range.size() / frequency_step);
    if (!(steps >= 0.0 && steps <= MAX_TICKS))
        return;
    for (int i = 0; i <= static_cast<int>(steps); ++i) {
        const double value = y_axis.range.min + i * frequency_step;
        const int y = y_axis.map_value(value);
        painter->setPen(text_pen);
        plot_text(painter, y_axis.gridline_label(value), 90, Qt::AlignHCenter, Qt::AlignBottom,
                  false, rect.left() - 2 * tick, y);
        painter->setPen(frame_pen);
        painter->drawLine(rect.left(), y, rect.left() - tick, y);
    }
}

void Histogram::plot_legend(QPainter* painter, QRect rect, int px) const
{
    const int half_line = px / 2;
    for (int k = 0; k < series.size(); ++k) {
        painter->setBrush(series.at(k)->brush);
        painter->drawRect(QRect(rect.left(), rect.top() + k * px, px, px));
        painter->setPen(text_pen);
        plot_text(painter, " " + series.at(k)->name, 0, Qt::AlignLeft, Qt::AlignVCenter, false,
                  rect.left() + px, rect.top() + half_line + k * px);
    }
}

void Histogram::plot(QPainter* painter, QRect rect)
{
    x_axis.origin = rect.left();
    x_axis.length = rect.width();
    y_axis.origin = rect.bottom();
    y_axis.length = rect.height();
    calc_bins();
    calc_frequencies();

    painter->setPen(frame_pen);
    painter->drawRect(rect);
    painter->setFont(label_font);
    const int px = painter->fontInfo().pixelSize();
    plot_bin_ticks(painter, rect, px / 2);
    plot_frequency_ticks(painter, rect, px / 2);
    for (int i = 0; i < series.size(); ++i)
        series.at(i)->plot(painter, bin_width, i, series.size());
    plot_legend(painter, rect, px);

    y_axis.plot_caption(painter, rect);

    // An absolute line near the device's top, on purpose: not relative to the plot area.
    rect.moveBottom(3 * px);
    x_axis.plot_caption(painter, rect);
}
