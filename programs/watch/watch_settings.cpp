#include "watch/watch_settings.h"

#include "watch/log_place.h"
#include "watch/tells/memory_file.h"

#include <QDir>
#include <QFileInfo>

StartOfWatch start_of_watch(const WatchOptions& options)
{
    StartOfWatch start;
    QStringList folders = options.folders;
    if (folders.isEmpty() && !log_folder_of_application().isEmpty())
        folders << log_folder_of_application();
    if (folders.isEmpty())
        start.error = "The application has no log folder yet; choose one there, or name one here.";
    for (const QString& folder : folders) {
        if (!QFileInfo(folder).isDir())
            start.missing << QString("There is no folder '%1'.").arg(folder);
        start.settings.folders << QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    }
    start.settings.folders.removeDuplicates();
    start.settings.state_folder = watch_state_folder();
    start.settings.quiet_seconds = options.quiet_seconds;
    return start;
}
