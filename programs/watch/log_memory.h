#pragma once

#include "watch/watched_log.h"

/** What a watch leaves behind for the next one. */
struct WatchMemory
{
    QList<LogMemory> tests;  ///< those that ran at the last look, or had ended
    QList<Situation> disks;  ///< those that were low or full
};

QByteArray text_of(const WatchMemory& memory);

/** Of a text that is none of ours, nothing. */
WatchMemory memory_in(const QByteArray& text);
