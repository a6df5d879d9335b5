#include "dialogs/about.h"

#include "ui_about.h"

#include "common/build_info.h"
#include "common/distributor.h"
#include "config/help_ids.h"
#include "config/settings.h"
#include "config/tool_tips.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <QUrl>

namespace
{
constexpr QSize LOGO_SIZE(267, 67);

void copy(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

void open_directory(const QString& directory)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(directory));
}
}  // namespace

About::About(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::About>()), logo_box(nullptr)
{
    ui->setupUi(this);
    ui->label_2->setText(Distributor::copyright);
    ui->label->setText(QString(Distributor::license_note).arg(Distributor::mail_address));
    set_tooltips();
    ui->laTitleAndVersion->setText(
        QString("%1 (ver. %2)").arg(ui->laTitleAndVersion->text(), BuildInfo::version));
    ui->laSettingsDir->setText(QString("Settings Dir: %1").arg(Settings::get_settings_dir()));
    ui->laLogDir->setText(QString("Log Dir: %1").arg(Settings::get_log_dir()));
    set_up_logo();
    make_room_for_note();
}

About::~About() = default;

void About::set_tooltips()
{
    ToolTips::assign(ui->laSettingsDir, HELP_SETTINGS_DIR);
    ToolTips::assign(ui->pbCopySettingsDir, HELP_COPY_SETTINGS_DIR);
    ToolTips::assign(ui->pbOpenSettingsDir, HELP_OPEN_SETTINGS_DIR);
    ToolTips::assign(ui->laLogDir, HELP_LOG_DIR);
    ToolTips::assign(ui->pbCopyLogDir, HELP_COPY_LOG_DIR);
    ToolTips::assign(ui->pbOpenLogDir, HELP_OPEN_LOG_DIR);
    ToolTips::assign(ui->pbWebpage, HELP_WEBPAGE);
}

void About::set_up_logo()
{
    ui->frLogo->setFixedHeight(LOGO_SIZE.height());
    logo_box.setParent(ui->frLogo);
    logo_box.resize(LOGO_SIZE);
    connect(&logo_box, &PaintBox::sig_paint, this, &About::slot_paint_logo);
}

void About::make_room_for_note()
{
    // The layout asks for fewer lines than the note has in the narrowest dialog.
    const QMargins margins = layout()->contentsMargins();
    const int width = layout()->totalMinimumSize().width() - margins.left() - margins.right();
    ui->label->setMinimumHeight(ui->label->heightForWidth(width));
}

void About::slot_paint_logo(QPainter* painter, QRect)
{
    // Alive until the process ends: a pixmap must not outlive the application object.
    static const auto& logo = *new QPixmap(":/battery_tester_logo_267x67.png");
    logo_box.setGeometry(QRect(QPoint((ui->frLogo->width() - logo_box.width()) / 2, 0), LOGO_SIZE));
    painter->drawPixmap(logo.rect(), logo);
}

void About::on_pbCopySettingsDir_clicked()
{
    copy(Settings::get_settings_dir());
}

void About::on_pbOpenSettingsDir_clicked()
{
    open_directory(Settings::get_settings_dir());
}

void About::on_pbCopyLogDir_clicked()
{
    copy(Settings::get_log_dir());
}

void About::on_pbOpenLogDir_clicked()
{
    open_directory(Settings::get_log_dir());
}

void About::on_pbWebpage_clicked()
{
    QDesktopServices::openUrl(QUrl(Distributor::product_page));
}

void About::on_pbOK_clicked()
{
    accept();
}
