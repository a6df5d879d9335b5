#include "guard/frozen_watch.h"

namespace
{
// Longer than any line: a line caught on its way, look after look, is not a heap that grows.
constexpr int GROWTH = 100;
}  // namespace

FrozenWatch::FrozenWatch(qint64 limit_ms, qint64 gap_ms) : limit(limit_ms), gap(gap_ms)
{
}

void FrozenWatch::look(qint64 now_ms, const QMap<QString, int>& waiting, bool stopped)
{
    const bool continuous = begun && now_ms >= last_look && now_ms - last_look <= gap;
    bool stands = true;
    bool any_waits = false;
    grown = false;
    for (auto line = waiting.begin(); line != waiting.end(); ++line) {
        stands = take_line(line.key(), line.value()) && stands;
        any_waits = any_waits || line.value() > 0;
    }
    // A line that is closed takes its bytes with it, and somebody has closed it.
    for (auto line = lines.begin(); line != lines.end();) {
        const bool gone = !waiting.contains(line.key());
        stands = stands && !gone;
        line = gone ? lines.erase(line) : line + 1;
    }
    if (!continuous || !stands || !any_waits || stopped)
        standing_since = now_ms;
    last_look = now_ms;
    begun = true;
}

/** False if somebody has taken bytes. */
bool FrozenWatch::take_line(const QString& name, int bytes)
{
    const auto known = lines.find(name);
    if (bytes == 0)
        return lines.remove(name) == 0;
    if (known == lines.end()) {
        lines.insert(name, {bytes, bytes});
        return true;
    }
    const bool stands = bytes >= known->last;
    known->last = bytes;
    if (!stands)
        known->lowest = bytes;
    grown = grown || bytes >= known->lowest + GROWTH;
    return stands;
}

bool FrozenWatch::is_frozen() const
{
    return grown && last_look - standing_since >= limit;
}
