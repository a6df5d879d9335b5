#include "common/widget_colors.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <QSpinBox>

namespace
{
template <typename Widget> bool is_a(const QWidget* widget)
{
    return qobject_cast<const Widget*>(widget) != nullptr;
}

void set_brush(QWidget* widget, QPalette::ColorRole role, const QColor& color)
{
    QPalette palette = widget->palette();
    if (role != QPalette::NoRole)
        palette.setBrush(QPalette::All, role, QBrush(color));
    widget->setPalette(palette);
}

QPalette::ColorRole background_role(const QWidget* widget)
{
    if (is_a<QPushButton>(widget))
        return QPalette::Button;
    if (is_a<QLineEdit>(widget) || is_a<QSpinBox>(widget) || is_a<QCheckBox>(widget))
        return QPalette::Base;
    if (is_a<QLabel>(widget) || is_a<QDialog>(widget))
        return QPalette::Window;
    return QPalette::NoRole;
}

QPalette::ColorRole foreground_role(const QWidget* widget)
{
    if (is_a<QLabel>(widget))
        return QPalette::WindowText;
    if (is_a<QPushButton>(widget))
        return QPalette::ButtonText;
    return QPalette::NoRole;
}
}  // namespace

void set_widget_background(QWidget* widget, QColor color)
{
    if (is_a<QComboBox>(widget)) {
        widget->setStyleSheet(QString("QComboBox { background-color: %1; }").arg(color.name()));
        return;
    }
    set_brush(widget, background_role(widget), color);
    widget->setAutoFillBackground(true);
    widget->update();
}

void set_widget_foreground(QWidget* widget, QColor color)
{
    if (is_a<QComboBox>(widget)) {
        widget->setStyleSheet(QString("QComboBox { foreground-color: %1; }").arg(color.name()));
        return;
    }
    set_brush(widget, foreground_role(widget), color);
    widget->update();
}

void set_widget_colors(QWidget* widget, QColor text_color, QColor background_color)
{
    if (is_a<QComboBox>(widget)) {
        widget->setStyleSheet(QString("QComboBox { color: %1; background-color: %2; }")
                                  .arg(text_color.name(), background_color.name()));
        return;
    }
    set_widget_foreground(widget, text_color);
    set_widget_background(widget, background_color);
}
