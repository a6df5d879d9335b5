#include "support/golden_file.h"

#include "support/test_files.h"

#include <QFile>

namespace
{
QString write_golden(const QString& file_name, const QByteArray& bytes)
{
    QFile file(test_data(file_name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return QString("%1 cannot be written.").arg(file_name);
    return QString("%1 was written; check it and run again without KEST_UPDATE_GOLDEN.")
        .arg(file_name);
}

QString first_difference(const QList<QByteArray>& expected, const QList<QByteArray>& actual)
{
    int line = 0;
    while (line < expected.size() && line < actual.size() && expected[line] == actual[line])
        ++line;
    return QString("line %1 is \"%2\" and should be \"%3\"")
        .arg(line + 1)
        .arg(line < actual.size() ? QString::fromUtf8(actual[line]) : "<end>",
             line < expected.size() ? QString::fromUtf8(expected[line]) : "<end>");
}
}  // namespace

QString difference_from_golden(const QString& file_name, const QByteArray& bytes)
{
    if (qEnvironmentVariableIsSet("KEST_UPDATE_GOLDEN"))
        return write_golden(file_name, bytes);
    QFile file(test_data(file_name));
    if (!file.open(QIODevice::ReadOnly))
        return QString("There is no %1; KEST_UPDATE_GOLDEN=1 makes it.").arg(file_name);
    const QByteArray expected = file.readAll();
    if (bytes == expected)
        return QString();
    return file_name + ": " + first_difference(expected.split('\n'), bytes.split('\n'));
}
