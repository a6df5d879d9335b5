#pragma once

#include "write_faults.h"

#include <QByteArray>
#include <QFile>
#include <QString>

/** A way in which a disk can fail. */
struct Way
{
    const char* name;
    int error;
    bool half;
};

constexpr int FOREVER = 1000000;

/** Of all that was looked at: how many disks, and how many left what they should not. */
struct DiskTally
{
    int tried = 0;
    int failures = 0;
};
extern DiskTally tally;

/** Counts, and tells of the first of those that are not good. */
void check(bool good, const char* file, const Way& way, int first, int count, const char* what);

/** A file that takes all the room that the disk of the temporary folder has. */
class Filler
{
public:
    Filler();
    /** Whether anything has been refused since. */
    bool has_bitten() const;
    ~Filler();
    Filler(const Filler&) = delete;
    Filler& operator=(const Filler&) = delete;

private:
    QFile file;
    int refused = 0;
};
