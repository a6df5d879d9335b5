#include "doctor/look.h"

#include "config/battery_profiles.h"
#include "config/ini_file.h"
#include "config/settings.h"
#include "programs/common/mounts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>

namespace
{
// A row of a data log, and a line of telemetry with its time in the event log; one of each a second.
constexpr double ROW_BYTES = 30.0;
constexpr double TELEMETRY_BYTES = 60.0;
constexpr double SECONDS_AN_HOUR = 3600.0;

/** Whether a folder that is not there can be made: whether the last one above it can be written. */
bool can_be_made(const QString& folder)
{
    QString above = folder;
    while (!QFileInfo::exists(above) && above != "/")
        above = QFileInfo(above).path();
    const QFileInfo info(above);
    return info.isDir() && info.isWritable();
}

SeenStore look_at_settings()
{
    const QString folder = Settings::get_settings_dir();
    const QFileInfo info(Settings::get_settings_filename());
    const auto store = [](const QString& path, StoreState state, const Refusal& refusal = {}) {
        return SeenStore{"settings", path, state, refusal};
    };
    if (!QFileInfo(folder).isDir())
        return store(folder, can_be_made(folder) ? StoreState::Good : StoreState::NoFolder);
    if (!QFileInfo(folder).isWritable())
        return store(folder, StoreState::FolderReadOnly);
    if (!info.exists())
        return store(info.filePath(), StoreState::Good);
    if (!info.isWritable())
        return store(info.filePath(), StoreState::ReadOnly);
    if (info.isFile() && Settings::ini_file->load())
        return store(info.filePath(), StoreState::Good);
    const Refusal& refusal = Settings::ini_file->get_refusal();
    return store(info.filePath(), refusal.line == 0 ? StoreState::Unreadable : StoreState::Refused,
                 refusal);
}

SeenStore look_at_profiles()
{
    SeenStore store = {"profiles", BatteryProfiles::get_filename(), StoreState::Good, {}};
    const QFileInfo info(store.path);
    QFile file(store.path);
    if (!info.exists())
        return store;
    if (!info.isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Text))
        store.state = StoreState::Unreadable;
    else if (!BatteryProfiles::read(file, store.refusal))
        store.state = StoreState::Refused;
    return store;
}

SeenFolder look_at_folder(const FileView& view, const QString& role, const QString& path,
                          double bytes_an_hour)
{
    const QFileInfo info(path);
    SeenFolder folder;
    folder.role = role;
    folder.path = path;
    folder.exists = !path.isEmpty() && info.isDir();
    folder.bytes_an_hour = bytes_an_hour;
    if (!folder.exists)
        return folder;
    folder.writable = info.isWritable() && info.isExecutable();
    folder.bytes_free = QStorageInfo(path).bytesAvailable();
    const QString file_system = file_system_of(view, info.canonicalFilePath());
    folder.network = is_network(file_system) ? file_system : QString();
    return folder;
}
}  // namespace

QList<SeenStore> look_at_stores()
{
    delete Settings::ini_file;
    Settings::ini_file = new INIFile(Settings::get_settings_filename());
    return {look_at_settings(), look_at_profiles()};
}

QList<SeenFolder> look_at_folders(const FileView& view)
{
    const double bytes_a_second =
        ROW_BYTES + (Settings::get_log_all_telemetry() ? TELEMETRY_BYTES : 0.0);
    // A former key, which the program moves to the newer one at its next start.
    const QString archive = Settings::get_archive_dir();
    return {
        look_at_folder(view, "log", Settings::get_log_dir(), bytes_a_second * SECONDS_AN_HOUR),
        look_at_folder(view, "PDF", archive.isEmpty() ? Settings::get_pdf_dir() : archive, 0.0)};
}
