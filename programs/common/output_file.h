#pragma once

#include <QFile>
#include <QString>
#include <QVector>

/**
 * A file that is there when it is whole and not before: made beside its place and then put there.
 *
 * If the program is ended by Ctrl-C or SIGTERM meanwhile, nothing is left of it.
 */
class OutputFile
{
public:
    /** With `forced`, what stands at `target` already gives way. */
    OutputFile(const QString& target, bool forced);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /** False with an error. */
    bool open();
    /** Written in large pieces; what fails shows at commit. */
    void write(const QByteArray& bytes);
    void write(const char* bytes, int size);
    /** Writes out what waits. False with an error. */
    bool flush();
    /** Tells how a library fared that wrote to the temporary path: empty, or why it failed. */
    void written_by_others(const QString& failure);
    /** Puts the file in its place. False with an error; nothing is left then. */
    bool commit();
    /**
     * The same of several: all of them, or none, also where a signal comes. What they have replaced by
     * `force` does not come back.
     *
     * @return the one that failed; null if all are in their places
     */
    static const OutputFile* commit_together(const QVector<OutputFile*>& files);

    /** Where the file is made: for a library that writes to a path. */
    QString temporary_path() const;
    /** A sentence: what, which file, what to do. */
    QString error() const;

private:
    bool fail(const QString& sentence);
    bool make_whole();
    bool put_in_place();

    QString path;
    bool force;
    QFile file;
    QByteArray pending;
    QString error_text;
    int place = -1;  ///< among the files that a signal removes
};
