#include "dialogs/widget_font_debug_dialog.h"

#include "ui_widget_font_debug_dialog.h"

#include "common/wheel_focus.h"
#include "common/widget_colors.h"
#include "common/widget_sizing.h"

#include <QFontDatabase>

namespace
{
constexpr int LARGEST_FONT = 24;  // points
}

WidgetFontDebugDialog::WidgetFontDebugDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::WidgetFontDebugDialog>())
{
    ui->setupUi(this);
    leave_wheel_without_focus(this);
    // Noted before the boxes are filled: their first items already change the examples.
    const QString family = ui->pbExample->font().family();
    const int point_size = ui->pbExample->font().pointSize();
    ui->cbFontFamily->addItems(QFontDatabase().families());
    for (int size = 1; size <= LARGEST_FONT; ++size)
        ui->cbFontSize->addItem(QString::number(size));
    ui->cbFontFamily->setCurrentText(family);
    ui->cbFontSize->setCurrentText(QString::number(point_size));
    on_leText_textEdited(ui->leText->text());
    set_widget_background(ui->laExample, Qt::gray);
}

WidgetFontDebugDialog::~WidgetFontDebugDialog() = default;

void WidgetFontDebugDialog::update_label()
{
    const QPushButton* button = ui->pbExample;
    ui->laMetrics->setText(QString("Pushbutton: %1 px x %2 px, Text: %3 px")
                               .arg(button->width())
                               .arg(button->height())
                               .arg(button->fontMetrics().horizontalAdvance(button->text())));
}

void WidgetFontDebugDialog::on_cbFontFamily_currentTextChanged(const QString& family)
{
    QFont font = ui->pbExample->font();
    font.setFamily(family);
    set_example_font(font);
}

void WidgetFontDebugDialog::on_cbFontSize_currentTextChanged(const QString& size)
{
    QFont font = ui->pbExample->font();
    font.setPointSize(size.toInt());
    set_example_font(font);
}

void WidgetFontDebugDialog::set_example_font(const QFont& font)
{
    ui->pbExample->setFont(font);
    ui->laExample->setFont(font);
    ui->cbExample->setFont(font);
}

void WidgetFontDebugDialog::on_leText_textEdited(const QString& text)
{
    ui->pbExample->setText(text);
    ui->laExample->setText(text);
    ui->cbExample->setText(text);
}

void WidgetFontDebugDialog::on_pbResizeText_clicked()
{
    fit_font_to_width(ui->pbExample, 12, 1);
    fit_font_to_width(ui->laExample, 12, 1);
    fit_font_to_width(ui->cbExample, 12, 1);
}

void WidgetFontDebugDialog::on_pbNarrower_clicked()
{
    widen(-1);
}

void WidgetFontDebugDialog::on_pbWider_clicked()
{
    widen(1);
}

void WidgetFontDebugDialog::widen(int pixels)
{
    ui->frame->setFixedWidth(qMax(0, ui->frame->maximumWidth() + pixels));
    update_label();
}

void WidgetFontDebugDialog::on_pbShorter_clicked()
{
    heighten(-1);
}

void WidgetFontDebugDialog::on_pbTaller_clicked()
{
    heighten(1);
}

void WidgetFontDebugDialog::heighten(int pixels)
{
    QPushButton* button = ui->pbExample;
    const bool pinned = button->minimumHeight() == button->maximumHeight();
    const int height = pinned ? button->minimumHeight() : button->height();
    button->setFixedHeight(qMax(0, height + pixels));
    update_label();
}

void WidgetFontDebugDialog::on_pbOK_clicked()
{
    accept();
}
