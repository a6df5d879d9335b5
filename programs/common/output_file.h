#pragma once

#include <QFile>
#include <QString>

/**
 * A file that is there when it is whole and not before: made beside its place and then put there.
 *
 * If the program is ended by Ctrl-C or SIGTERM meanwhile, nothing is left of it.
 */
class OutputFile
{
public:
    /** With `force`, what stands at `path` already gives way. */
    OutputFile(const QString& path, bool force);
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

    /** Where the file is made: for a library that writes to a path. */
    QString temporary_path() const;
    /** A sentence: what, which file, what to do. */
    QString error() const;

private:
    bool fail(const QString& sentence);

    QString path;
    bool force;
    QFile file;
    QByteArray pending;
    QString error_text;
    int slot = -1;  ///< among the files that a signal removes
};

/** Lets Ctrl-C and SIGTERM remove what is not whole. To be called once, at the start. */
void remove_unfinished_files_at_signals();
