#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class WidgetFontDebugDialog;
}

/** Shows a developer how a text of any font fits into a button, a label and a check box of any size. */
class WidgetFontDebugDialog : public QDialog
{
    Q_OBJECT

public:
    explicit WidgetFontDebugDialog(QWidget* parent);
    ~WidgetFontDebugDialog() override;

    void update_label();

private slots:
    void on_cbFontFamily_currentTextChanged(const QString& family);
    void on_cbFontSize_currentTextChanged(const QString& size);
    void on_leText_textEdited(const QString& text);
    void on_pbResizeText_clicked();
    void on_pbNarrower_clicked();
    void on_pbWider_clicked();
    void on_pbShorter_clicked();
    void on_pbTaller_clicked();
    void on_pbOK_clicked();

private:
    void set_example_font(const QFont& font);
    void widen(int pixels);
    void heighten(int pixels);

    std::unique_ptr<Ui::WidgetFontDebugDialog> ui;
};
