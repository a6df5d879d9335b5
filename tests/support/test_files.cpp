#include "support/test_files.h"

#include <QFile>

QString source_file(const QString& path)
{
    return KEST_SOURCE_DIR "/" + path;
}

QString test_data(const QString& path)
{
    return source_file("tests/data/" + path);
}

bool write_file(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QByteArray content_of(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}
