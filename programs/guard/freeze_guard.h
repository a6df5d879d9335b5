#pragma once

#include "guard/child_process.h"
#include "guard/frozen_watch.h"
#include "guard/notes.h"

/** Looks whether a program still reads its lines, without touching them. */
class FreezeGuard
{
public:
    enum class News
    {
        None,
        Frozen,
        Stopped,   ///< by somebody's will, for as long as makes a frozen program
        Recovered  ///< from either
    };

    FreezeGuard(int limit_seconds, qint64 gap_ms);

    /** Each piece of news is given once. */
    News look(const ChildProcess& child, const OpenFiles& files, const QVector<SerialLine>& held,
              char process_state, qint64 now_ms);

private:
    News change_to(News state);

    FrozenWatch watch;
    qint64 limit_ms;
    qint64 gap;
    qint64 stopped_ms = 0;
    qint64 last_look = 0;
    News known = News::None;
};
