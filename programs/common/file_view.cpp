#include "programs/common/file_view.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

FileView::FileView(QString root_folder) : root(std::move(root_folder))
{
    root = root == "/" ? QString() : QFileInfo(root).canonicalFilePath();
}

bool FileView::is_this_machine() const
{
    return root.isEmpty();
}

QString FileView::place(const QString& name) const
{
    return root + name;
}

bool FileView::exists(const QString& name) const
{
    return QFile::exists(place(name));
}

QStringList FileView::entries(const QString& folder) const
{
    return QDir(place(folder))
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                   QDir::Name);
}

QString FileView::text(const QString& name) const
{
    QFile file(place(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
}

QString FileView::value(const QString& name) const
{
    return text(name).trimmed();
}

QString FileView::link(const QString& name) const
{
    char target[4096];
    const ssize_t size =
        ::readlink(QFile::encodeName(place(name)).constData(), target, sizeof target);
    return size < 0 ? QString() : QFile::decodeName(QByteArray(target, int(size)));
}

QString FileView::canonical(const QString& name) const
{
    const QString place_of_all = QFileInfo(place(name)).canonicalFilePath();
    return place_of_all.startsWith(root + "/") ? place_of_all.mid(root.size()) : QString();
}
