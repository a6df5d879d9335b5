#pragma once

#include <QString>

/** Where the system tells of its processes and of its hardware. */
struct SystemRoots
{
    QString proc = "/proc";
    QString sys = "/sys";
};
