#include "config/settings.h"

#include "common/file.h"
#include "common/message_boxes.h"
#include "config/ini_file.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace Settings
{
INIFile* ini_file = nullptr;

namespace
{
struct Key
{
    QString section;
    QString name;
};

const Key LOG_DIRECTORY = {"directories", "log_directory"};
const Key PDF_DIRECTORY = {"directories", "pdf_directory"};
const Key ARCHIVE_DIRECTORY = {"directories", "archive_directory"};
const Key SHOW_DEBUG_INFO = {"misc", "show_debug_info"};
const Key COPY_LOGS = {"misc", "copy_logs_when_pdf_generated"};
const Key TEST_STATION_WIDTH_PX = {"misc", "test_station_width_px"};
const Key HEADER_IMAGE_FILENAME = {"misc", "header_image_filename"};
const Key CHART_REFRESH_RATE_HZ = {"misc", "chart_refresh_rate_hz"};
const Key LOG_ALL_TELEMETRY = {"misc", "log_all_telemetry"};

constexpr int DEFAULT_CHART_REFRESH_RATE_HZ = 3;

/** What the store leaves of `value`; whether it found one is not asked. */
template <typename Value> Value get(const Key& key, Value value)
{
    ini_file->get_value(key.section, key.name, value);
    return value;
}

template <typename Value> void set(const Key& key, Value value)
{
    ini_file->set_value(key.section, key.name, value);
}

bool fail(const QString& message, const QString& path)
{
    show_error(message.arg(path));
    return false;
}

bool prepare_directory(const QString& dir)
{
    if (!File::make_path(dir))
        return fail("Cannot create settings directory (%1).", dir);
    if (!QFileInfo(dir).isWritable())
        return fail("Settings directory (%1) is read-only.", dir);
    return true;
}

bool create_file()
{
    set_chart_refresh_rate(DEFAULT_CHART_REFRESH_RATE_HZ);
    return save();
}

/** The older key wins over the newer one on purpose, and is then gone. */
bool move_archive_directory()
{
    const QString archive_dir = get_archive_dir();
    if (archive_dir.isEmpty())
        return true;
    set_pdf_dir(archive_dir);
    INISection* directories = nullptr;
    ini_file->get_section(ARCHIVE_DIRECTORY.section, directories);
    directories->delete_variable(ARCHIVE_DIRECTORY.name);
    return save();
}
}  // namespace

bool load()
{
    if (!prepare_directory(get_settings_dir()))
        return false;
    const QString filename = get_settings_filename();
    delete ini_file;
    ini_file = new INIFile(filename);
    const QFileInfo info(filename);
    if (!info.exists())
        return create_file();
    if (!info.isWritable())
        return fail("Settings file (%1) is read-only.", filename);
    if (!ini_file->load())
        return fail("Unable to read %1.", filename);
    return move_archive_directory();
}

bool save()
{
    return ini_file->save();
}

QString get_settings_dir()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString get_settings_filename()
{
    return QDir(get_settings_dir()).filePath("kestrometer.cfg");
}

int get_installation_type()
{
    return 0;
}

QString get_installation_type_string()
{
    return "Non-Portable";
}

QString get_default_log_dir()
{
    return get_settings_dir();
}

QString get_log_dir()
{
    return get(LOG_DIRECTORY, QString());
}

void set_log_dir(QString dir)
{
    set(LOG_DIRECTORY, dir);
}

QString get_pdf_dir()
{
    return get(PDF_DIRECTORY, QString());
}

void set_pdf_dir(QString dir)
{
    set(PDF_DIRECTORY, dir);
}

QString get_archive_dir()
{
    return get(ARCHIVE_DIRECTORY, QString());
}

void set_archive_dir(QString dir)
{
    set(ARCHIVE_DIRECTORY, dir);
}

bool get_show_debug_info()
{
    return get(SHOW_DEBUG_INFO, false);
}

void set_show_debug_info(bool show)
{
    set(SHOW_DEBUG_INFO, show);
}

bool get_copy_logs()
{
    return get(COPY_LOGS, false);
}

void set_copy_logs(bool copy)
{
    set(COPY_LOGS, copy);
}

int get_test_station_width_px()
{
    return get(TEST_STATION_WIDTH_PX, 0);
}

void set_test_station_width_px(int width)
{
    set(TEST_STATION_WIDTH_PX, width);
}

QString get_header_image_filename()
{
    return get(HEADER_IMAGE_FILENAME, QString());
}

void set_header_image_filename(QString filename)
{
    set(HEADER_IMAGE_FILENAME, filename);
}

int get_chart_refresh_rate()
{
    int rate = 0;
    const Key& key = CHART_REFRESH_RATE_HZ;
    const bool found = ini_file->get_value(key.section, key.name, rate);
    return found ? rate : DEFAULT_CHART_REFRESH_RATE_HZ;
}

void set_chart_refresh_rate(int rate)
{
    set(CHART_REFRESH_RATE_HZ, rate);
}

bool get_log_all_telemetry()
{
    return get(LOG_ALL_TELEMETRY, false);
}

void set_log_all_telemetry(bool log)
{
    set(LOG_ALL_TELEMETRY, log);
}
}  // namespace Settings
