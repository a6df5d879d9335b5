#include "watch/watch_settings.h"

#include "programs/common/file_view.h"
#include "programs/common/mounts.h"
#include "watch/folder_probe.h"
#include "watch/log_place.h"
#include "watch/tells/memory_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace
{
/** Empty, or why nobody can look there now. */
QString obstacle(const QString& folder)
{
    // Of a machine that is off whoever asks more than that waits for ever.
    const bool far = is_network(file_system_of(FileView("/"), folder));
    if (far && !FolderProbe(QFile::encodeName(folder)).answers())
        return QString("The folder '%1' does not answer.").arg(folder);
    return QFileInfo(folder).isDir() ? QString() : QString("There is no folder '%1'.").arg(folder);
}
}  // namespace

StartOfWatch start_of_watch(const WatchOptions& options)
{
    StartOfWatch start;
    QStringList folders = options.folders;
    if (folders.isEmpty() && !log_folder_of_application().isEmpty())
        folders << log_folder_of_application();
    if (folders.isEmpty())
        start.error = "The application has no log folder yet; choose one there, or name one here.";
    for (const QString& folder : folders) {
        const QString path = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
        const QString wrong = obstacle(path);
        if (!wrong.isEmpty())
            start.missing << wrong;
        start.settings.folders << path;
    }
    start.settings.folders.removeDuplicates();
    start.settings.state_folder = watch_state_folder();
    start.settings.quiet_seconds = options.quiet_seconds;
    return start;
}
