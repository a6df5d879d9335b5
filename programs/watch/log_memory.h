#pragma once

#include "watch/watched_log.h"

/** The tests that ran at the last look, as the text that is kept of them. */
QByteArray text_of(const QList<LogMemory>& memories);

/** Of a text that is none of ours, nothing. */
QList<LogMemory> memories_in(const QByteArray& text);
