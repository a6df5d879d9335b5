#pragma once

#include <QByteArray>

/** What happens to a write, or to the opening of a file for writing: errno, or half of the bytes and then ENOSPC. */
struct WriteFault
{
    QByteArray path;      ///< files whose path holds this; empty: none
    QByteArray not_path;  ///< but not this, if not empty
    int first = 0;        ///< the first write that fails, counted from 1
    int count = 0;        ///< so many fail
    int error = 0;
    bool half = false;     ///< the first one writes half of its bytes before the disk is full
    bool opening = false;  ///< not a write fails: to open the file does
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
/** Writes, or openings, that fitted since set(). */
int writes();
/** Writes that the system itself has refused, or cut short, so far. */
int refused();
}  // namespace WriteFaults
