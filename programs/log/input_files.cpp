#include "log/input_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstring>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace
{
bool is_made_by_us(const QString& name)
{
    return name.endsWith(".tidy.csv") || name.endsWith(".bdf.csv") || name.startsWith('.');
}

/** The logs of folders, in any order. What cannot be looked at is told: nobody would miss it else. */
class Search
{
public:
    explicit Search(bool into_folders) : recursive(into_folders)
    {
    }

    void look_into(const fs::path& folder)
    {
        std::error_code failure;
        fs::directory_iterator at(folder, failure);
        for (; !failure && at != fs::directory_iterator(); at.increment(failure))
            take(*at);
        if (failure)
            complaints << QString("%1 cannot be read: %2.")
                              .arg(QFile::decodeName(folder.c_str()),
                                   QString::fromLocal8Bit(std::strerror(failure.value())));
    }

    QStringList logs;
    QStringList complaints;

private:
    void take(const fs::directory_entry& entry)
    {
        std::error_code ignored;
        const QByteArray bytes = entry.path().filename().c_str();
        const QString name = QFile::decodeName(bytes);
        const bool folder = entry.is_directory(ignored);
        const bool wanted =
            folder ? recursive && !name.startsWith('.') && !entry.is_symlink(ignored)
                   : name.endsWith(".csv", Qt::CaseInsensitive) && !is_made_by_us(name);
        if (!wanted)
            return;
        const QString path = QFile::decodeName(entry.path().c_str());
        if (QFile::encodeName(name) != bytes)
            complaints << QString("%1 has a name that is no text; rename it.").arg(path);
        else if (folder)
            look_into(entry.path());
        else
            logs << path;
    }

    bool recursive;
};

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

QStringList meaning_of(const QString& word, bool recursive, QStringList& complaints)
{
    static const QRegularExpression wildcard("[*?\\[]");
    QStringList files = {word};
    if (QFileInfo(word).isDir()) {
        Search search(recursive);
        search.look_into(QFile::encodeName(word).constData());
        search.logs.sort();
        complaints << search.complaints;
        if (!search.complaints.isEmpty())
            return search.logs;
        files = search.logs;
    } else if (!QFileInfo::exists(word) && word.contains(wildcard)) {
        files = fitting(word);
    }
    if (files.isEmpty())
        complaints << QString("%1 means no log at all.").arg(word);
    return files;
}
}  // namespace

QStringList input_files(const QStringList& words, bool recursive, QStringList& complaints)
{
    QStringList files;
    for (const QString& word : words)
        files << meaning_of(word, recursive, complaints);
    files.removeDuplicates();
    return files;
}
