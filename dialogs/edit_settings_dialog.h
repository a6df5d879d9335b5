#pragma once

#include <QDialog>

#include <memory>

class QLabel;

namespace Ui
{
class EditSettingsDialog;
}

/** Edits a copy of the settings; OK takes it over and saves it if something was changed. */
class EditSettingsDialog : public QDialog
{
    Q_OBJECT

public:
    static const QString NOT_SET_TEXT;         ///< stands for an empty directory
    static const QString DEFAULT_HEADER_TEXT;  ///< stands for an empty header image

    explicit EditSettingsDialog(QWidget* parent);
    ~EditSettingsDialog() override;

private slots:
    void on_pbChangeLogDirectory_clicked();
    void on_pbChangePDFDirectory_clicked();
    void on_pbChangeHeaderImageFile_clicked();
    void on_sbChartRefreshRate_valueChanged(int value);
    void on_cbShowDebugInformation_clicked();
    void on_cbLogAllTelemetry_clicked();
    void on_cbCopyLogs_clicked();
    void on_pbOK_clicked();
    void on_pbCancel_clicked();

private:
    void show_settings();
    void show_path(QLabel* label, const QString& path);
    void set_tooltips();
    void set_widget_sizes();
    void change_directory(QLabel* label, const QString& caption);
    void store_settings();

    std::unique_ptr<Ui::EditSettingsDialog> ui;
    bool changed = false;  ///< whether OK has anything to write
};
