#pragma once

#include <QString>

class INIFile;

/**
 * The application's settings: `kestrometer.cfg` in the settings directory.
 *
 * load() comes first. Getters then read memory, setters change memory, save() writes the file.
 */
namespace Settings
{
extern INIFile* ini_file;  ///< owned; made by load(), alive until the process ends

/**
 * Creates directory and file where they are missing and reads the file.
 *
 * @return false if anything fails, which has then been shown; a malformed file is left as it is
 */
bool load();
bool save();

QString get_settings_dir();
QString get_settings_filename();
int get_installation_type();
QString get_installation_type_string();

/** Where a directory chooser starts when no directory has been set. */
QString get_default_log_dir();

/** Empty: not chosen yet. */
QString get_log_dir();
void set_log_dir(QString dir);

/** Empty: not chosen yet. */
QString get_pdf_dir();
void set_pdf_dir(QString dir);

/** The former key of the PDF directory; load() moves it. */
QString get_archive_dir();
void set_archive_dir(QString dir);

/** Whether each panel shows its instrument's last line. */
bool get_show_debug_info();
void set_show_debug_info(bool show);

/** Whether the logs are copied to the PDF directory with each report. */
bool get_copy_logs();
void set_copy_logs(bool copy);

/** 0: not measured yet. */
int get_test_station_width_px();
void set_test_station_width_px(int width);

/** Empty: the built-in image. */
QString get_header_image_filename();
void set_header_image_filename(QString filename);

/** Repaints per second, 3 if there is no such number; 0 comes back as 0. */
int get_chart_refresh_rate();
void set_chart_refresh_rate(int rate);

/** Whether the event logs also hold all lines and commands of the instruments. */
bool get_log_all_telemetry();
void set_log_all_telemetry(bool log);
}  // namespace Settings
