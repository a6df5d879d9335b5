#pragma once

#include <QString>

/** Where a reader stopped, and why: for those who tell it; the application itself does not. */
struct Refusal
{
    int line = 0;    ///< counted from 1; 0 if no line was refused
    QString text;    ///< the line, trimmed
    QString reason;  ///< "has no \"=\"": what follows upon "the line"
};
