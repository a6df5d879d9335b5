#pragma once

#include <QList>
#include <QString>

class QLabel;
class QWidget;

/** Pins all widgets to the greatest width that one of them needs, plus `extra` pixels. */
void set_width_to_widest(QList<QWidget*> widgets, int extra);

/** Pins the width to `ems` times that of an "m"; `fit_text` shrinks the font to it, to 4 points at least. */
void set_width_in_ems(QWidget* widget, int ems, bool fit_text);

/**
 * Shrinks the font point by point until the widget's text fits its width.
 *
 * @param point_size where to begin; -1 begins at the widget's own size
 */
void fit_font_to_width(QWidget* widget, int point_size, int min_point_size);

/** Shows `text` and pins the width to what it takes: for a label that no layout follows. */
void set_fitting_text(QLabel* label, const QString& text);

/** Shows `text`, cut and with "..." where it is too wide; the tooltip then begins with all of it. */
void set_elided_text(QLabel* label, QString text, QString tooltip);
