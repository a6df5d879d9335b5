#pragma once

#include "watch/tells/memory.h"

/** The memory as a document, and back. False without touching `memory` if it is none. */
QByteArray memory_document(const Memory& memory);
bool read_memory_document(const QByteArray& document, Memory& memory);

enum class Lock
{
    Taken,
    HeldByAnother,
    Impossible  ///< the folder cannot be written
};

/** The memory on disk. It is replaced as a whole, so that whoever is killed leaves the old or the new one. */
class MemoryFile
{
public:
    explicit MemoryFile(const QString& folder);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /** Takes the folder for this process alone, until it ends in whatever manner; else an error. */
    Lock lock();
    /** An empty memory if there is none. A damaged one is put aside, and told in error(). */
    Memory load();
    /** False with an error. */
    bool save(const Memory& memory);
    /** A sentence: what, which file, what to do. Empty if the last step went well. */
    QString error() const;
    QString path() const;

private:
    QString folder;
    QString error_text;
    int lock_handle = -1;
};

/** "~/.local/state/kest-watch", or where the desktop keeps such things. */
QString watch_state_folder();
