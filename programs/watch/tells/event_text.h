#pragma once

#include "watch/tells/event.h"

/** The pack as people call it, "Pack A 1042", else the log's name; the computer for its own conditions. */
QString name_of(const Event& event);

/** "Pack A 1042: waits for you", in one line. */
QString title_of(const Event& event);

/** What it means, what to do, and what is known, a line each. Times are local. */
QString message_of(const Event& event);

/** Control characters and line separators made visible, so that a name stays within its line. */
QString visible(const QString& text);

/** "45 s", "12 min", "3 h 05 min", "2 d 03 h" */
QString duration_text(qint64 seconds);
