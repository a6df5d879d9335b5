#include "disk_checks.h"

#include <QDir>

#include <cstdio>

DiskTally tally;

void check(bool good, const char* file, const Way& way, int first, int count, const char* what)
{
    if (good)
        return;
    ++tally.failures;
    if (tally.failures <= 20)
        std::printf("%s, %s at write %d, %d of them: %s\n", file, way.name, first, count, what);
}

Filler::Filler() : file(QDir::tempPath() + "/filler")
{
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        qFatal("The disk cannot be filled.");
    for (int size = 65536; size > 0; size /= 2)
        while (file.write(QByteArray(size, 'x')) == size)
            continue;
    refused = WriteFaults::refused();
}

Filler::~Filler()
{
    file.remove();
}

bool Filler::has_bitten() const
{
    return WriteFaults::refused() > refused;
}
