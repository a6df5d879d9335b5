#pragma once

#include "charts/paint_box.h"

#include <QDialog>

#include <memory>

namespace Ui
{
class About;
}

/** Who the program is, and where its files live. */
class About : public QDialog
{
    Q_OBJECT

public:
    explicit About(QWidget* parent);
    ~About() override;

public slots:
    void slot_paint_logo(QPainter* painter, QRect rect);

private slots:
    void on_pbCopySettingsDir_clicked();
    void on_pbOpenSettingsDir_clicked();
    void on_pbCopyLogDir_clicked();
    void on_pbOpenLogDir_clicked();
    void on_pbWebpage_clicked();
    void on_pbOK_clicked();

private:
    void set_tooltips();
    void set_up_logo();
    void make_room_for_note();

    std::unique_ptr<Ui::About> ui;
    PaintBox logo_box;  ///< child of the form's logo frame, and gone before it
};
