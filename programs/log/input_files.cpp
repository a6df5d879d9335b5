#include "log/input_files.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QRegularExpression>

namespace
{
bool is_made_by_us(const QString& name)
{
    return name.endsWith(".tidy.csv") || name.endsWith(".bdf.csv") || name.startsWith('.');
}

QStringList logs_in(const QString& folder, bool recursive)
{
    QStringList logs;
    QDirIterator names(folder, {"*.csv"}, QDir::Files | QDir::System,
                       recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (names.hasNext()) {
        const QString path = names.next();
        if (!is_made_by_us(names.fileName()))
            logs << path;
    }
    logs.sort();
    return logs;
}

/** Patterns in the last part of the path alone, as shells leave them that find nothing. */
QStringList fitting(const QString& pattern)
{
    const QFileInfo parts(pattern);
    const QDir folder = parts.dir();
    QStringList files;
    for (const QString& name : folder.entryList({parts.fileName()}, QDir::Files, QDir::Name))
        files << (pattern.contains('/') ? folder.filePath(name) : name);
    return files;
}

QStringList meaning_of(const QString& word, bool recursive)
{
    static const QRegularExpression wildcard("[*?\\[]");
    if (QFileInfo(word).isDir())
        return logs_in(word, recursive);
    if (!QFileInfo::exists(word) && word.contains(wildcard))
        return fitting(word);
    return {word};
}
}  // namespace

QStringList input_files(const QStringList& words, bool recursive, QStringList& unmatched)
{
    QStringList files;
    for (const QString& word : words) {
        const QStringList meant = meaning_of(word, recursive);
        if (meant.isEmpty())
            unmatched << word;
        files << meant;
    }
    files.removeDuplicates();
    return files;
}
