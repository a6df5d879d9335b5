#include "common/widget_sizing.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include <optional>

namespace
{
void pin_width(QWidget* widget, int width)
{
    widget->setMinimumWidth(width);
    widget->setMaximumWidth(width);
}

/** A pinned width counts before the layout has run; width() is then still a default. */
int available_width(const QWidget* widget)
{
    const bool pinned = widget->minimumWidth() == widget->maximumWidth();
    return pinned ? widget->minimumWidth() : widget->width();
}

QString shown_text(const QWidget* widget)
{
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        return label->text();
    if (const auto* button = qobject_cast<const QPushButton*>(widget))
        return button->text();
    if (const auto* line_edit = qobject_cast<const QLineEdit*>(widget))
        return line_edit->text();
    if (const auto* check_box = qobject_cast<const QCheckBox*>(widget))
        return check_box->text();
    if (const auto* spin_box = qobject_cast<const QSpinBox*>(widget))
        return spin_box->text();
    return QString();
}

int text_width_limit(const QWidget* widget)
{
    const int available = available_width(widget);
    if (qobject_cast<const QPushButton*>(widget) != nullptr)
        return available - 23;
    // The indicator is about as wide as the box is high.
    if (qobject_cast<const QCheckBox*>(widget) != nullptr)
        return available - widget->height();
    return available;
}

int single_line_width(const QFontMetrics& metrics, const QString& text)
{
    return metrics.size(Qt::TextSingleLine, text).width();
}

/** How many characters are surely too wide, found in long steps: a text may be megabytes too long. */
int length_beyond(const QString& text, const QFontMetrics& metrics, int width)
{
    int length = 1;
    while (length < text.size() && single_line_width(metrics, text.left(length)) <= width)
        length *= 2;
    return qMin(length, text.size());
}

/** The whole of a text or the longest cut of it; none if not even the shortest fits. */
std::optional<QString> part_that_fits(const QString& text, const QFontMetrics& metrics,
                                      int available)
{
    const auto fits = [&](const QString& candidate) {
        return available > single_line_width(metrics, candidate);
    };
    const int longest = length_beyond(text, metrics, 2 * available);
    if (longest == text.size() && fits(text))
        return text;
    for (int n = longest; n >= 0; --n) {
        const QString cut = text.left(n) + "...";
        if (fits(cut))
            return cut;
    }
    return std::nullopt;
}

/** What became of a text for a label of this font and width. */
struct ElidedText
{
    bool made_of(const QString& other, const QFont& other_font, int other_width) const
    {
        return available == other_width && text == other && font == other_font;
    }

    QString text;
    QFont font;
    int available = -1;  ///< no label's, before the first text
    std::optional<QString> part;
};
}  // namespace

void set_width_to_widest(QList<QWidget*> widgets, int extra)
{
    int widest = 0;
    for (const QWidget* widget : qAsConst(widgets))
        widest = qMax(widest, widget->minimumSizeHint().width());
    for (QWidget* widget : qAsConst(widgets))
        pin_width(widget, widest + extra);
}

void set_width_in_ems(QWidget* widget, int ems, bool fit_text)
{
    pin_width(widget, QFontMetrics(widget->font()).horizontalAdvance('m') * ems);
    if (fit_text)
        fit_font_to_width(widget, -1, 4);
}

void fit_font_to_width(QWidget* widget, int point_size, int min_point_size)
{
    QFont font = widget->font();
    if (point_size != -1)
        font.setPointSize(point_size);
    const QString text = shown_text(widget);
    const int limit = text_width_limit(widget);
    while (font.pointSize() > min_point_size && QFontMetrics(font).horizontalAdvance(text) > limit)
        font.setPointSize(font.pointSize() - 1);
    widget->setFont(font);
}

void set_fitting_text(QLabel* label, const QString& text)
{
    // An empty label asks for what it was pinned to.
    label->setMinimumWidth(0);
    label->setText(text);
    pin_width(label, label->minimumSizeHint().width());
}

void set_elided_text(QLabel* label, QString text, QString tooltip)
{
    const int available = available_width(label);
    // Kept, as panel after panel shows the same directory in the same room.
    static auto& last = *new ElidedText;
    if (!last.made_of(text, label->font(), available))
        last = {text, label->font(), available,
                part_that_fits(text, QFontMetrics(label->font()), available)};
    if (!last.part.has_value())
        return;
    const bool whole = *last.part == text;
    label->setText(*last.part);
    if (!whole)
        tooltip = tooltip.isEmpty() ? text : text + "\n" + tooltip;
    label->setToolTip(tooltip);
}
