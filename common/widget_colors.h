#pragma once

#include <QColor>

class QWidget;

/** Paints the background behind a widget's text, in the way that suits its kind. */
void set_widget_background(QWidget* widget, QColor color);

/** Paints the text of a combo box, a label or a button; other kinds stay as they are. */
void set_widget_foreground(QWidget* widget, QColor color);

/** Both colours at once: a combo box has one style sheet, in which the later call would win. */
void set_widget_colors(QWidget* widget, QColor text_color, QColor background_color);
