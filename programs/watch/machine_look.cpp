#include "watch/machine_look.h"

#include "common/time_span.h"

#include <cerrno>
#include <cstdlib>
#include <sys/statvfs.h>

namespace
{
constexpr qint64 LEAST_STEP_MS = 2000;  // corrections by and by stay far below
constexpr qint64 LEAST_SLEEP_MS = 2000;
constexpr qint64 TOLD_FOR_MS = 600000;  // what has happened is found for ten minutes
constexpr qint64 RATE_WINDOW_MS = 60000;
constexpr qint64 MB = 1000000;
constexpr double HOUR = 3600.0;

/** A state begins below one bound and ends at another one: a disk that wobbles is told of once. */
struct RoomBounds
{
    Condition condition;
    qint64 begin_bytes;
    qint64 end_bytes;
    qint64 begin_files;
    qint64 end_files;
    double begin_seconds;  ///< of writing
    double end_seconds;
};

// The worst one first. Less than a block takes no row.
constexpr RoomBounds ROOM_BOUNDS[] = {
    // condition, bytes, files, seconds
    {Condition::DiskFull, 4096, 65536, 1, 16, 0.0, 0.0},
    {Condition::DiskLow, 200 * MB, 250 * MB, 0, 0, 24 * HOUR, 30 * HOUR},
};

QString megabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e6, 'f', 1) + " MB";
}

double seconds_left(const DiskRoom& room)
{
    return double(room.free_bytes) / room.bytes_per_second;
}

bool is_below(const RoomBounds& bounds, const DiskRoom& room, bool lasts)
{
    if (room.free_bytes < (lasts ? bounds.end_bytes : bounds.begin_bytes) ||
        room.free_files < (lasts ? bounds.end_files : bounds.begin_files))
        return true;
    // As long as nobody knows how fast it fills, a state that was found by that goes on.
    if (room.bytes_per_second < 0.0)
        return lasts && bounds.end_seconds > 0.0;
    return room.bytes_per_second > 0.0 &&
           seconds_left(room) < (lasts ? bounds.end_seconds : bounds.begin_seconds);
}

QString room_text(const DiskRoom& room, Condition condition)
{
    if (condition == Condition::DiskFull)
        return "Nothing more can be written: rows are being lost.";
    const QString left = megabytes(room.free_bytes);
    if (room.bytes_per_second <= 0.0 || seconds_left(room) >= ROOM_BOUNDS[1].end_seconds)
        return QString("%1 are left.").arg(left);
    return QString("%1 are left, for %2 of writing.")
        .arg(left, format_time_span(qint64(seconds_left(room))));
}

Situation happened(Condition condition, const Moment& moment, const QByteArray& folder,
                   const QString& detail)
{
    Situation situation;
    situation.log = folder;
    situation.condition = condition;
    situation.since = moment.time;
    situation.detail = detail;
    return situation;
}
}  // namespace

bool judge_room(const DiskRoom& room, bool held, Situation& situation)
{
    const Condition before = situation.condition;
    for (const RoomBounds& bounds : ROOM_BOUNDS) {
        // What was full and is no longer is still low.
        const bool lasts = held && (before == bounds.condition || before == Condition::DiskFull);
        if (!is_below(bounds, room, lasts))
            continue;
        situation.condition = bounds.condition;
        situation.detail = room_text(room, bounds.condition);
        return true;
    }
    return false;
}

QList<Situation> MachineLook::look(const Moment& moment, const QList<FolderUse>& folders)
{
    QList<Situation> found;
    if (!folders.isEmpty())
        look_at_clocks(moment, folders.first().path);
    for (const Situation& event : events)
        found << event;
    for (const FolderUse& folder : folders)
        look_at_disk(moment, folder, found);
    return found;
}

void MachineLook::look_at_clocks(const Moment& moment, const QByteArray& folder)
{
    if (begun) {
        const qint64 passed = moment.passed_ms - last.passed_ms;
        const qint64 slept = passed - (moment.awake_ms - last.awake_ms);
        const qint64 step = last.time.msecsTo(moment.time) - passed;
        if (slept >= LEAST_SLEEP_MS)
            events << happened(Condition::WokeFromSleep, moment, folder,
                               QString("It slept for %1.").arg(format_time_span(slept / 1000)));
        if (std::abs(step) >= LEAST_STEP_MS)
            events << happened(
                Condition::ClockStepped, moment, folder,
                QString("It was set %1 by %2.")
                    .arg(step > 0 ? "forward" : "back", format_time_span(std::abs(step) / 1000)));
    }
    begun = true;
    last = moment;
    while (!events.isEmpty() && std::abs(events.first().since.msecsTo(moment.time)) > TOLD_FOR_MS)
        events.removeFirst();
}

double MachineLook::rate_of(const Moment& moment, const FolderUse& folder)
{
    const auto known = marks.find(folder.path);
    if (known == marks.end() || folder.written < known->written) {
        marks.insert(folder.path, {moment.awake_ms, folder.written, -1.0});
        return -1.0;
    }
    const qint64 passed = moment.awake_ms - known->awake_ms;
    if (passed >= RATE_WINDOW_MS)
        *known = {moment.awake_ms, folder.written,
                  double(folder.written - known->written) * 1000.0 / double(passed)};
    return known->rate;
}

void MachineLook::look_at_disk(const Moment& moment, const FolderUse& folder,
                               QList<Situation>& found)
{
    const auto before = disk_states.constFind(folder.path);
    const bool held = before != disk_states.constEnd();
    if (!folder.answers && held)
        found << *before;
    struct statvfs system = {};
    if (!folder.answers || ::statvfs(folder.path.constData(), &system) != 0)
        return;
    DiskRoom room;
    room.free_bytes = qint64(system.f_bavail) * qint64(system.f_frsize);
    room.free_files = system.f_files == 0 ? 1 : qint64(system.f_favail);
    room.bytes_per_second = rate_of(moment, folder);
    Situation situation = held ? *before : Situation();
    situation.log = folder.path;
    if (!judge_room(room, held, situation)) {
        disk_states.remove(folder.path);
        return;
    }
    const bool goes_on = held && before->condition == situation.condition;
    situation.since = goes_on ? before->since : moment.time;
    disk_states.insert(folder.path, situation);
    found << situation;
}

QList<Situation> MachineLook::disks() const
{
    return disk_states.values();
}

void MachineLook::recall(const QList<Situation>& disks)
{
    for (const Situation& disk : disks)
        disk_states.insert(disk.log, disk);
}
