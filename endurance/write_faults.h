#pragma once

#include <QByteArray>

/** What happens to a write: errno, or half of the bytes and then ENOSPC. */
struct WriteFault
{
    QByteArray path;      ///< files whose path holds this; empty: none
    QByteArray not_path;  ///< but not this, if not empty
    int first = 0;        ///< the first write that fails, counted from 1
    int count = 0;        ///< so many fail
    int error = 0;
    bool half = false;  ///< the first one writes half of its bytes before the disk is full
};

/**
 * Stands between this process and the disk: the program's own write(), in place of the library's.
 *
 * A write to a file that fits is counted, and fails when its turn has come.
 */
namespace WriteFaults
{
void set(const WriteFault& fault);
void clear();
/** Writes that fitted since set(). */
int writes();
}  // namespace WriteFaults
