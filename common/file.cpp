#include "common/file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace File
{
namespace
{
bool is_blank_or_dot(QChar c)
{
    return c == ' ' || c == '.';
}

/** One spelling for each place in the file system; links in the file's own name are not followed. */
QString place_of(const QString& path)
{
    const QFileInfo info(QDir(".").absoluteFilePath(path));
    const QString directory = info.dir().canonicalPath();
    return directory.isEmpty() ? QDir::cleanPath(info.filePath())
                               : directory + "/" + info.fileName();
}
}  // namespace

bool contains_unsafe_filename_characters(QString name)
{
    static const QSet<QChar> illegal_filename_chars = {'<',  '>', ':', '"', '/',
                                                       '\\', '|', '?', '*'};
    for (const QChar c : qAsConst(name)) {
        if (c.unicode() < 0x20 || c.unicode() > 0xFF || illegal_filename_chars.contains(c))
            return true;
    }
    return false;
}

bool is_safe_filename(QString name)
{
    if (name.isEmpty() || is_blank_or_dot(name.front()) || is_blank_or_dot(name.back()))
        return false;
    return !contains_unsafe_filename_characters(name);
}

bool change_extension(QString filename, QString extension, QString& changed)
{
    if (!extension.startsWith('.'))
        return false;
    // The whole string on purpose: a dot in a directory counts if the file has no extension.
    const int dot = filename.lastIndexOf('.');
    if (dot < 0)
        return false;
    changed = filename.left(dot) + extension;
    return true;
}

bool make_path(QString path)
{
    const QDir dir(path);
    return dir.exists() || dir.mkpath(".");
}

QString directory_of(QString path)
{
    return QFileInfo(path).absoluteDir().absolutePath();
}

bool copy_file(QString source, QString target, bool overwrite)
{
    // A link is followed where it is read: removing what it leads to would lose the only copy.
    const QString content = QFileInfo(QDir(".").absoluteFilePath(source)).canonicalFilePath();
    if (place_of(source) == place_of(target) || content == place_of(target))
        return false;
    source = QDir(".").absoluteFilePath(source);
    target = QDir(".").absoluteFilePath(target);
    if (!make_path(directory_of(target)))
        return false;
    if (!QFile::exists(source))
        return false;
    if (QFile::exists(target) && (!overwrite || !QFile::remove(target)))
        return false;
    return QFile::copy(source, target);
}
}  // namespace File
