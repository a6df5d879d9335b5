#include "programs/common/output_file.h"

#include "programs/common/unfinished_files.h"
#include "programs/common/whole_file.h"

#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int PIECE = 1 << 18;  // bytes

QString system_error()
{
    return QString::fromLocal8Bit(std::strerror(errno));
}

/** A hidden name beside `path`, so that the rename stays within one file system; never too long. */
QString name_beside(const QString& path)
{
    constexpr int ENOUGH = 40;
    const QFileInfo target(path);
    const QString unique = QUuid::createUuid().toString(QUuid::Id128).left(8);
    return target.dir().filePath(QString(".%1.%2").arg(target.fileName().left(ENOUGH), unique));
}

/** Moves a file without putting it over another one, which even one made this moment is not. */
bool move_to_free_name(const QByteArray& from, const QByteArray& to)
{
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return true;
    // Not every file system knows that call; a link never replaces either.
    return errno == EINVAL && ::link(from.constData(), to.constData()) == 0 &&
           ::unlink(from.constData()) == 0;
}
}  // namespace

OutputFile::OutputFile(const QString& target, bool forced) : path(target), force(forced)
{
    // Room asked for is kept when the text is emptied for the next piece.
    pending.reserve(PIECE + PIECE / 4);
}

OutputFile::~OutputFile()
{
    const UnfinishedFiles::Step step;
    if (!file.fileName().isEmpty())
        file.remove();
    UnfinishedFiles::forget(place);
}

bool OutputFile::fail(const QString& sentence)
{
    if (error_text.isEmpty())
        error_text = sentence;
    return false;
}

bool OutputFile::open()
{
    if (QFileInfo(path).isDir())
        return fail(QString("%1 is a folder; give another one with --to.").arg(path));
    if (!force && QFileInfo::exists(path))
        return fail(QString("%1 exists; add --force to replace it.").arg(path));
    const QString name = name_beside(path);
    const UnfinishedFiles::Step step;
    place = UnfinishedFiles::note(QFile::encodeName(name));
    file.setFileName(name);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
        return true;
    const QString reason = file.errorString();
    file.setFileName(QString());
    return fail(
        QString("%1 cannot be written: %2. Choose another folder with --to.").arg(path, reason));
}

void OutputFile::write(const QByteArray& bytes)
{
    write(bytes.constData(), bytes.size());
}

void OutputFile::write(const char* bytes, int size)
{
    pending.append(bytes, size);
    if (pending.size() >= PIECE)
        flush();
}

bool OutputFile::flush()
{
    const bool written = error_text.isEmpty() && write_all(file.handle(), pending);
    pending.resize(0);
    return written || fail(QString("%1 cannot be written: %2. Make room or choose another folder "
                                   "with --to.")
                               .arg(path, system_error()));
}

void OutputFile::written_by_others(const QString& failure)
{
    if (!failure.isEmpty())
        fail(QString("%1 cannot be written: %2. Make room or choose another folder with --to.")
                 .arg(path, failure));
}

bool OutputFile::make_whole()
{
    if (!flush() || !error_text.isEmpty())
        return false;
    if (::fsync(file.handle()) != 0)
        return fail(QString("%1 cannot be written: %2.").arg(path, system_error()));
    file.close();
    return true;
}

bool OutputFile::put_in_place()
{
    const QByteArray from = QFile::encodeName(file.fileName());
    const QByteArray to = QFile::encodeName(path);
    const bool moved =
        force ? std::rename(from.constData(), to.constData()) == 0 : move_to_free_name(from, to);
    if (!moved)
        return fail(QString("%1 cannot be put in its place: %2.").arg(path, system_error()));
    file.setFileName(QString());
    return true;
}

const OutputFile* OutputFile::commit_together(const QVector<OutputFile*>& files)
{
    for (OutputFile* const one : files)
        if (!one->make_whole())
            return one;
    const UnfinishedFiles::Step step;
    for (int i = 0; i < files.size(); ++i) {
        if (files[i]->put_in_place())
            continue;
        for (int done = 0; done < i; ++done)
            QFile::remove(files[done]->path);
        return files[i];
    }
    return nullptr;
}

bool OutputFile::commit()
{
    return commit_together({this}) == nullptr;
}

QString OutputFile::temporary_path() const
{
    return file.fileName();
}

QString OutputFile::error() const
{
    return error_text;
}
