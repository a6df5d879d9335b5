#include "log/targets.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <mutex>

QString target_path(const QString& log_path, const QString& folder, const QString& ending)
{
    const QFileInfo log(log_path);
    QString name = log.fileName();
    if (name.endsWith(".csv", Qt::CaseInsensitive))
        name.chop(4);
    if (folder.isEmpty() && !log_path.contains('/'))
        return name + ending;
    return QDir(folder.isEmpty() ? log.path() : folder).filePath(name + ending);
}

bool claim_target(const QString& path)
{
    static std::mutex mutex;
    static QSet<QString> claimed;
    const std::lock_guard<std::mutex> lock(mutex);
    const QString absolute = QFileInfo(path).absoluteFilePath();
    if (claimed.contains(absolute))
        return false;
    claimed.insert(absolute);
    return true;
}
