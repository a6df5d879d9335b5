#include "watch/watch.h"

#include "programs/common/file_view.h"
#include "programs/common/mounts.h"
#include "programs/common/whole_file.h"
#include "watch/log_memory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <unistd.h>

namespace
{
constexpr qint64 SCAN_MS = 10000;
constexpr qint64 FORGOTTEN_AFTER_S = 86400;
const char* const MEMORY_FILE = "tests.json";

/** The file is the one that is remembered, and no other of its name. */
bool is_still_there(const LogMemory& test)
{
    const FileState now = state_of_file(test.path);
    return now.exists && now.identity.inode == test.identity.inode &&
           (now.identity.device == test.identity.device || !test.same_boot);
}

/** By the name alone first: a folder of a machine that is off says nothing of its links. */
bool is_on_network(const QString& folder)
{
    const FileView machine("/");
    return is_network(file_system_of(machine, folder)) ||
           is_network(file_system_of(machine, QFileInfo(folder).canonicalFilePath()));
}
}  // namespace

Watch::Watch(const WatchSettings& watch_settings)
    : settings(watch_settings), forecaster(settings.state_folder, settings.keeps_memory)
{
    for (const QString& folder : settings.folders)
        folders.push_back(std::make_unique<LogFolder>(
            QFile::encodeName(folder), settings.all_on_network || is_on_network(folder),
            settings.ask));
    recall();
}

Look Watch::look(const Moment& moment)
{
    find_who_answers();
    for (const auto& folder : folders) {
        if (!answering.contains(folder->path))
            continue;
        folder->look();
        follow_names(*folder);
    }
    take_up_awaited();
    for (const auto& log : logs)
        if (answers(log->path))
            log->read(moment);
    scan_when_due(moment);
    for (const auto& folder : folders)
        if (answering.contains(folder->path))
            begin_to_follow(*folder);
    for (const auto& log : logs) {
        if (!answers(log->path))
            continue;
        if (log->first_look)
            log->read(moment);
        log->judge(moment, holders);
    }
    forget_old(moment);
    forecaster.read_on(folders, logs, answering);
    Look look = find_situations(moment);
    remember();
    return look;
}

Look Watch::find_situations(const Moment& moment)
{
    Look look;
    for (const auto& log : logs) {
        QList<Situation> found = log->situations(moment, settings.quiet_seconds);
        forecaster.put_end(*log, moment, found);
        look.situations << found;
        look.test_runs = look.test_runs || (log->runs() && !found.isEmpty() &&
                                            found.first().condition != Condition::Done &&
                                            found.first().condition != Condition::PerhapsEnded);
    }
    look.situations << machine.look(moment, folder_uses());
    return look;
}

bool Watch::knows_all_logs() const
{
    return forecaster.knows_all_logs;
}

void Watch::find_who_answers()
{
    answering.clear();
    for (const auto& folder : folders)
        if (folder->answers())
            answering.insert(folder->path);
}

/** What is known of a log of a folder that does not answer stays as it is, and grows old. */
bool Watch::answers(const QByteArray& path) const
{
    const LogFolder* const folder = folder_of(path);
    return folder != nullptr && answering.contains(folder->path);
}

/** Other folders of other machines are nobody's affair. */
bool Watch::may_touch(const QByteArray& path, const QStringList& mounts) const
{
    const auto lies_in = [&path](const QByteArray& folder) {
        return !folder.isEmpty() && path.startsWith(folder + '/');
    };
    if (std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
            return folder->network && lies_in(folder->real_path);
        }))
        return std::any_of(folders.begin(), folders.end(), [&](const auto& folder) {
            return answering.contains(folder->path) && lies_in(folder->real_path);
        });
    return std::none_of(mounts.begin(), mounts.end(),
                        [&](const QString& mount) { return lies_in(QFile::encodeName(mount)); });
}

/** A log that goes by another name now is the same test. */
void Watch::follow_names(const LogFolder& folder)
{
    for (const auto& log : logs) {
        const QByteArray path = folder.path_of(log->data.state.identity);
        if (!path.isEmpty() && path != log->path && !folder.logs.contains(log->path))
            log->rename(path);
    }
}

void Watch::scan_when_due(const Moment& moment)
{
    const bool missed = std::any_of(logs.begin(), logs.end(), [this](const auto& log) {
        return answers(log->path) && log->misses_its_writer(holders);
    });
    const bool grown = std::any_of(folders.begin(), folders.end(), [this](const auto& folder) {
        return std::any_of(folder->grown.begin(), folder->grown.end(),
                           [this](const QByteArray& path) { return watched(path) == nullptr; });
    });
    if (scanned && !missed && !grown && moment.awake_ms - scanned_ms < SCAN_MS)
        return;
    const QStringList mounts = network_mounts(FileView("/"));
    holders.scan([&](const QByteArray& path) { return may_touch(path, mounts); });
    scanned = true;
    scanned_ms = moment.awake_ms;
}

void Watch::begin_to_follow(const LogFolder& folder)
{
    for (const FileIdentity& file : holders.held()) {
        const QByteArray path = folder.path_of(file);
        if (!path.isEmpty())
            add(path, folder);
    }
    for (const QByteArray& path : folder.grown)
        if (may_hide(folder, path))
            add(path, folder);
}

void Watch::add(const QByteArray& path, const LogFolder& folder)
{
    if (watched(path) == nullptr)
        logs.push_back(std::make_unique<WatchedLog>(path, may_hide(folder, path)));
}

/** Who writes there is another machine's affair, or another user's. */
bool Watch::may_hide(const LogFolder& folder, const QByteArray& path) const
{
    return folder.network || (::geteuid() != 0 && folder.logs.value(path).owner != ::geteuid());
}

WatchedLog* Watch::watched(const QByteArray& path) const
{
    const auto found = std::find_if(logs.begin(), logs.end(),
                                    [&path](const auto& log) { return log->path == path; });
    return found == logs.end() ? nullptr : found->get();
}

bool Watch::is_to_be_forgotten(const WatchedLog& log, const Moment& moment) const
{
    const bool old = log.view(moment).line_seconds > FORGOTTEN_AFTER_S;
    const bool ended_long_ago =
        log.ended.isValid() && log.ended.secsTo(moment.time) > FORGOTTEN_AFTER_S;
    switch (log.writer) {
    case Writer::Running:
    case Writer::Previewer:
        return false;
    case Writer::Untold:
        return old || !log.data.state.exists;
    case Writer::Unseen:
        return old || !log.data.state.exists || !log.may_hide;
    case Writer::Gone:
        // Somebody has been there since. Until then it is no matter of days: the instrument may be on.
        if (holders.program_runs_again(log.holder) || was_put_away(log))
            return true;
        return log.view(moment).phase == TestPhase::Done && ended_long_ago;
    case Writer::Closed:
        return ended_long_ago;
    }
    return false;
}

bool Watch::was_put_away(const WatchedLog& log) const
{
    const LogFolder* const folder = folder_of(log.path);
    return !log.data.state.exists && folder != nullptr && folder->is_there();
}

void Watch::forget_old(const Moment& moment)
{
    logs.erase(std::remove_if(
                   logs.begin(), logs.end(),
                   [this, &moment](const auto& log) { return is_to_be_forgotten(*log, moment); }),
               logs.end());
}

QList<FolderUse> Watch::folder_uses() const
{
    QList<FolderUse> uses;
    for (const auto& folder : folders) {
        FolderUse use;
        use.path = folder->path;
        use.answers = answering.contains(folder->path);
        for (const auto& log : logs)
            if (log->runs() && folder->logs.contains(log->path))
                use.written += log->size();
        uses << use;
    }
    return uses;
}

void Watch::remember() const
{
    if (settings.state_folder.isEmpty() || !settings.keeps_memory)
        return;
    WatchMemory memory;
    memory.tests = awaited;
    memory.disks = machine.disks();
    for (const auto& log : logs)
        if (log->writer != Writer::Unseen && log->writer != Writer::Previewer)
            memory.tests << log->memory();
    const QByteArray text = text_of(memory);
    if (text == remembered)
        return;
    QDir().mkpath(settings.state_folder);
    // One that could not be written is tried again at the next look.
    if (replace_file(QDir(settings.state_folder).filePath(MEMORY_FILE), text))
        remembered = text;
}

void Watch::recall()
{
    if (settings.state_folder.isEmpty())
        return;
    QFile file(QDir(settings.state_folder).filePath(MEMORY_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return;
    remembered = file.readAll();
    const WatchMemory memory = memory_in(remembered);
    // A single look would have no time to find that there is room again.
    if (settings.keeps_memory)
        machine.recall(memory.disks);
    awaited = memory.tests;
}

/** A folder may be mounted later than the watch is started. */
void Watch::take_up_awaited()
{
    QList<LogMemory> still_awaited;
    for (LogMemory test : awaited) {
        const LogFolder* const folder = folder_of(test.path);
        if (folder == nullptr)
            continue;
        if (!answering.contains(folder->path) || !folder->is_there()) {
            still_awaited << test;
            continue;
        }
        const QByteArray path = folder->path_of(test.identity);
        if (test.same_boot && !path.isEmpty())
            test.path = path;
        if (is_still_there(test) && watched(test.path) == nullptr)
            logs.push_back(std::make_unique<WatchedLog>(test, may_hide(*folder, test.path)));
    }
    awaited = still_awaited;
}

const LogFolder* Watch::folder_of(const QByteArray& path) const
{
    const QByteArray parent = path.left(path.lastIndexOf('/'));
    const auto found = std::find_if(folders.begin(), folders.end(), [&parent](const auto& folder) {
        return folder->path == parent;
    });
    return found == folders.end() ? nullptr : found->get();
}
