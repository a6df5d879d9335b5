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
constexpr qint64 LOW_BYTES = 200 * 1000 * 1000;
constexpr double LOW_SECONDS = 86400.0;
constexpr qint64 FULL_BYTES = 4096;  // less than a block takes no row
constexpr qint64 RATE_WINDOW_MS = 60000;

QString megabytes(qint64 bytes)
{
    return QString::number(double(bytes) / 1e6, 'f', 1) + " MB";
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

bool judge_room(const DiskRoom& room, Situation& situation)
{
    if (room.free_bytes < FULL_BYTES || room.free_files == 0) {
        situation.condition = Condition::DiskFull;
        situation.detail = "Nothing more can be written: rows are being lost.";
        return true;
    }
    situation.condition = Condition::DiskLow;
    const double seconds_left =
        room.bytes_per_second > 0.0 ? double(room.free_bytes) / room.bytes_per_second : LOW_SECONDS;
    if (seconds_left < LOW_SECONDS) {
        situation.detail =
            QString("%1 are left, for %2 of writing.")
                .arg(megabytes(room.free_bytes), format_time_span(qint64(seconds_left)));
        return true;
    }
    situation.detail = QString("%1 are left.").arg(megabytes(room.free_bytes));
    return room.free_bytes < LOW_BYTES;
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
        marks.insert(folder.path, {moment.awake_ms, folder.written, 0.0});
        return 0.0;
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
    struct statvfs system = {};
    if (::statvfs(folder.path.constData(), &system) != 0)
        return;
    DiskRoom room;
    room.free_bytes = qint64(system.f_bavail) * qint64(system.f_frsize);
    room.free_files = system.f_files == 0 ? 1 : qint64(system.f_favail);
    room.bytes_per_second = rate_of(moment, folder);
    Situation situation;
    situation.log = folder.path;
    if (!judge_room(room, situation)) {
        disk_states.remove(folder.path);
        return;
    }
    const auto before = disk_states.constFind(folder.path);
    const bool goes_on =
        before != disk_states.constEnd() && before->condition == situation.condition;
    situation.since = goes_on ? before->since : moment.time;
    disk_states.insert(folder.path, situation);
    found << situation;
}
