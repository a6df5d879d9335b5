#pragma once

#include <QMap>
#include <QString>

/**
 * Tells a frozen program from one that works: bytes wait on its lines, grow, and nobody takes one.
 *
 * A program that is stopped, and a machine that was asleep, begin their time anew.
 */
class FrozenWatch
{
public:
    /** `limit_ms` of standing bytes make a frozen program; looks further apart than `gap_ms` do not count. */
    FrozenWatch(qint64 limit_ms, qint64 gap_ms);

    /** Takes how many bytes wait on each line now. */
    void look(qint64 now_ms, const QMap<QString, int>& waiting, bool stopped);
    bool is_frozen() const;

private:
    struct Line
    {
        int lowest = 0;  ///< bytes that waited when they began to stand
        int last = 0;
    };

    bool take_line(const QString& name, int bytes);

    qint64 limit;
    qint64 gap;
    qint64 standing_since = 0;
    qint64 last_look = 0;
    bool begun = false;
    bool grown = false;         ///< on one line at least, since its bytes began to stand
    QMap<QString, Line> lines;  ///< those with waiting bytes
};
