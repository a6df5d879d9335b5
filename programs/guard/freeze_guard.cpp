#include "guard/freeze_guard.h"

#include <algorithm>

namespace
{
QMap<QString, int> waiting_bytes(const ChildProcess& child, const OpenFiles& files,
                                 const QVector<SerialLine>& held)
{
    QMap<QString, int> waiting;
    for (const SerialLine& line : held)
        for (const OpenDevice& file : files.devices) {
            const int bytes = is_open_on(file, line) && file.both_ways
                                  ? child.waiting_bytes(file.descriptor, line.device)
                                  : -1;
            if (bytes >= 0)
                waiting[line.path] = bytes;
        }
    return waiting;
}
}  // namespace

FreezeGuard::FreezeGuard(int limit_seconds, qint64 gap_ms)
    : watch(limit_seconds * 1000LL, gap_ms), limit_ms(limit_seconds * 1000LL), gap(gap_ms)
{
}

FreezeGuard::News FreezeGuard::look(const ChildProcess& child, const OpenFiles& files,
                                    const QVector<SerialLine>& held, char process_state,
                                    qint64 now_ms)
{
    const bool stopped = process_state == 'T' || process_state == 't';
    watch.look(now_ms, waiting_bytes(child, files, held), stopped);
    // A machine that was asleep was not stopped by anybody.
    const qint64 passed = std::min(now_ms - last_look, gap);
    stopped_ms = stopped && last_look != 0 && !held.isEmpty() ? stopped_ms + passed : 0;
    last_look = now_ms;
    if (stopped_ms >= limit_ms)
        return change_to(News::Stopped);
    return change_to(watch.is_frozen() ? News::Frozen : News::None);
}

FreezeGuard::News FreezeGuard::change_to(News state)
{
    if (state == known)
        return News::None;
    const bool recovered = state == News::None;
    known = state;
    return recovered ? News::Recovered : state;
}
