#include "dialogs/edit_settings_dialog.h"

#include "ui_edit_settings_dialog.h"

#include "common/message_boxes.h"
#include "common/wheel_focus.h"
#include "common/widget_sizing.h"
#include "config/help_ids.h"
#include "config/settings.h"
#include "config/tool_tips.h"
#include "station/test_station.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>

const QString EditSettingsDialog::NOT_SET_TEXT = "(Not Set)";
const QString EditSettingsDialog::DEFAULT_HEADER_TEXT = "(Use Kest Header)";

namespace
{
/** What a label shows for a setting: the setting, or the words that stand for an empty one. */
QString text_or(const QString& setting, const QString& words_for_empty)
{
    return setting.isEmpty() ? words_for_empty : setting;
}

QString setting_of(const QLabel* label, const QString& words_for_empty)
{
    return label->text() == words_for_empty ? QString() : label->text();
}

bool directory_exists(const QString& dir, const QString& message)
{
    if (dir.isEmpty() || QDir(dir).exists())
        return true;
    show_error(message.arg(dir));
    return false;
}
}  // namespace

EditSettingsDialog::EditSettingsDialog(QWidget* parent)
    : QDialog(parent), ui(std::make_unique<Ui::EditSettingsDialog>())
{
    ui->setupUi(this);
    leave_wheel_without_focus(this);
    set_width_to_widest({ui->laLogDirectoryCaption, ui->laPDFDirectoryCaption,
                         ui->laHeaderImageCaption, ui->laChartRefreshRateCaption},
                        ui->laLogDirectory->height());
    show_settings();
    set_tooltips();
    set_widget_sizes();
}

EditSettingsDialog::~EditSettingsDialog() = default;

void EditSettingsDialog::show_settings()
{
    show_path(ui->laLogDirectory, text_or(Settings::get_log_dir(), NOT_SET_TEXT));
    show_path(ui->laPDFDirectory, text_or(Settings::get_pdf_dir(), NOT_SET_TEXT));
    // A rate that the spin box clips counts as changed on purpose: OK then stores the clipped one.
    ui->sbChartRefreshRate->setValue(Settings::get_chart_refresh_rate());
    show_path(ui->laHeaderImageFilename,
              text_or(Settings::get_header_image_filename(), DEFAULT_HEADER_TEXT));
    ui->cbShowDebugInformation->setChecked(Settings::get_show_debug_info());
    ui->cbLogAllTelemetry->setChecked(Settings::get_log_all_telemetry());
    ui->cbCopyLogs->setChecked(Settings::get_copy_logs());
}

/** A path may be longer than the screen is wide: it is cut off there, and the buttons stay in reach. */
void EditSettingsDialog::show_path(QLabel* label, const QString& path)
{
    label->setText(path);
    const int screen = QGuiApplication::primaryScreen()->availableGeometry().width();
    // Beside it are a caption and, together narrower than that, a button and the margins.
    const int room = screen - 2 * ui->laLogDirectoryCaption->minimumWidth();
    label->setMinimumWidth(qBound(1, room, label->sizeHint().width()));
}

void EditSettingsDialog::set_tooltips()
{
    ToolTips::assign(ui->laLogDirectory, HELP_DEFAULT_LOG_DIR);
    ToolTips::assign(ui->pbChangeLogDirectory, HELP_CHANGE_DEFAULT_LOG_DIR);
    ToolTips::assign(ui->laPDFDirectory, HELP_PDF_DIR);
    ToolTips::assign(ui->pbChangePDFDirectory, HELP_CHANGE_PDF_DIR);
    ToolTips::assign(ui->laHeaderImageFilename, HELP_HEADER_IMAGE);
    ToolTips::assign(ui->pbChangeHeaderImageFile, HELP_CHANGE_HEADER_IMAGE);
    ToolTips::assign(ui->sbChartRefreshRate, HELP_CHART_REFRESH_RATE);
    ToolTips::assign(ui->cbShowDebugInformation, HELP_SHOW_DEBUG_INFO);
    ToolTips::assign(ui->cbLogAllTelemetry, HELP_LOG_ALL_TELEMETRY);
    ToolTips::assign(ui->cbCopyLogs, HELP_COPY_LOGS);
}

void EditSettingsDialog::set_widget_sizes()
{
    for (QPushButton* button :
         {ui->pbChangeLogDirectory, ui->pbChangePDFDirectory, ui->pbChangeHeaderImageFile}) {
        const int side = button->minimumSizeHint().height();
        button->setFixedSize(side, side);
    }
    set_width_in_ems(ui->sbChartRefreshRate, 5, true);
}

void EditSettingsDialog::on_pbChangeLogDirectory_clicked()
{
    change_directory(ui->laLogDirectory, "Select Log File Directory");
}

void EditSettingsDialog::on_pbChangePDFDirectory_clicked()
{
    change_directory(ui->laPDFDirectory, "Select PDF Directory");
}

void EditSettingsDialog::change_directory(QLabel* label, const QString& caption)
{
    // "(Not Set)" is passed on, on purpose: the chooser then falls back on its own start.
    const QString start = text_or(label->text(), Settings::get_default_log_dir());
    const QString dir =
        QFileDialog::getExistingDirectory(nullptr, caption, start, QFileDialog::ShowDirsOnly);
    if (dir.isEmpty() || dir == label->text())
        return;
    if (!QFileInfo(dir).isWritable()) {
        show_error(QString("The directory %1 is not writable.").arg(dir));
        return;
    }
    show_path(label, dir);
    changed = true;
}

void EditSettingsDialog::on_pbChangeHeaderImageFile_clicked()
{
    QString selected_filter = "PNG Files (*.png)";
    const QString filename = QFileDialog::getOpenFileName(
        nullptr, "Select Header Image File (10:1 aspect ratio is best)",
        Settings::get_settings_dir(), "All Files (*.*);;PNG Files (*.png);;JPEG Files (*.jpg)",
        &selected_filter);
    // Cancel is the way to get back to the built-in image.
    show_path(ui->laHeaderImageFilename, text_or(filename, DEFAULT_HEADER_TEXT));
    if (filename != Settings::get_header_image_filename())
        changed = true;
}

void EditSettingsDialog::on_sbChartRefreshRate_valueChanged(int value)
{
    if (value != Settings::get_chart_refresh_rate())
        changed = true;
}

void EditSettingsDialog::on_cbShowDebugInformation_clicked()
{
    changed = true;
}

void EditSettingsDialog::on_cbLogAllTelemetry_clicked()
{
    changed = true;
}

void EditSettingsDialog::on_cbCopyLogs_clicked()
{
    changed = true;
}

void EditSettingsDialog::on_pbOK_clicked()
{
    // Even if nothing changed: a directory may have vanished since it was stored.
    if (!directory_exists(setting_of(ui->laLogDirectory, NOT_SET_TEXT),
                          "The selected log directory (%1) does not exist.") ||
        !directory_exists(setting_of(ui->laPDFDirectory, NOT_SET_TEXT),
                          "The selected PDF directory (%1) does not exist."))
        return;
    if (changed)
        store_settings();
    accept();
}

void EditSettingsDialog::store_settings()
{
    Settings::set_log_dir(setting_of(ui->laLogDirectory, NOT_SET_TEXT));
    Settings::set_pdf_dir(setting_of(ui->laPDFDirectory, NOT_SET_TEXT));
    Settings::set_chart_refresh_rate(ui->sbChartRefreshRate->value());
    Settings::set_show_debug_info(ui->cbShowDebugInformation->isChecked());
    Settings::set_log_all_telemetry(ui->cbLogAllTelemetry->isChecked());
    Settings::set_copy_logs(ui->cbCopyLogs->isChecked());
    Settings::set_header_image_filename(setting_of(ui->laHeaderImageFilename, DEFAULT_HEADER_TEXT));
    Settings::save();
    for (TestStation* station : qAsConst(TestStation::all_instances))
        station->set_log_all_telemetry(ui->cbLogAllTelemetry->isChecked());
}

void EditSettingsDialog::on_pbCancel_clicked()
{
    reject();
}
