#include "watch/watch.h"

#include "programs/common/file_view.h"
#include "programs/common/mounts.h"
#include "watch/log_memory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <unistd.h>

namespace
{
constexpr qint64 SCAN_MS = 10000;
constexpr qint64 FORGOTTEN_AFTER_S = 86400;
const char* const MEMORY_FILE = "tests.json";

bool is_on_network(const QString& folder)
{
    return is_network(file_system_of(FileView("/"), QFileInfo(folder).canonicalFilePath()));
}
}  // namespace

Watch::Watch(const WatchSettings& watch_settings)
    : settings(watch_settings), forecaster(settings.state_folder, settings.keeps_memory)
{
    for (const QString& folder : settings.folders)
        folders.push_back(
            std::make_unique<LogFolder>(QFile::encodeName(folder), is_on_network(folder)));
    recall();
}

Look Watch::look(const Moment& moment)
{
    for (const auto& folder : folders) {
        folder->look();
        follow_names(*folder);
    }
    for (const auto& log : logs)
        log->read(moment);
    scan_when_due(moment);
    for (const auto& folder : folders)
        begin_to_follow(*folder);
    for (const auto& log : logs) {
        if (log->first_look)
            log->read(moment);
        log->judge(moment, holders);
    }
    forget_old(moment);
    remember();
    forecaster.read_on(folders, logs);
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
        return log->misses_its_writer(holders);
    });
    const bool grown = std::any_of(folders.begin(), folders.end(), [this](const auto& folder) {
        return std::any_of(folder->grown.begin(), folder->grown.end(),
                           [this](const QByteArray& path) { return watched(path) == nullptr; });
    });
    if (scanned && !missed && !grown && moment.awake_ms - scanned_ms < SCAN_MS)
        return;
    holders.scan();
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
    switch (log.writer) {
    case Writer::Running:
    case Writer::Previewer:
        return false;
    case Writer::Untold:
        return old || !log.data.state.exists;
    case Writer::Unseen:
        return old || !log.data.state.exists || !log.may_hide;
    case Writer::Gone:
        // Where the program runs again, somebody has been there since.
        return holders.program_runs_again(log.holder) ||
               log.ended.secsTo(moment.time) > FORGOTTEN_AFTER_S;
    case Writer::Closed:
        return log.ended.secsTo(moment.time) > FORGOTTEN_AFTER_S;
    }
    return false;
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
    QList<LogMemory> memories;
    for (const auto& log : logs)
        if (log->writer != Writer::Unseen && log->writer != Writer::Previewer)
            memories << log->memory();
    const QByteArray text = text_of(memories);
    if (text == remembered)
        return;
    QDir().mkpath(settings.state_folder);
    QSaveFile file(QDir(settings.state_folder).filePath(MEMORY_FILE));
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit())
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
    for (const LogMemory& memory : memories_in(remembered)) {
        const auto folder =
            std::find_if(folders.begin(), folders.end(), [&memory](const auto& candidate) {
                return memory.path.startsWith(candidate->path + '/');
            });
        const FileState now = state_of_file(memory.path);
        if (folder != folders.end() && now.exists && now.identity == memory.identity)
            logs.push_back(std::make_unique<WatchedLog>(memory, may_hide(**folder, memory.path)));
    }
}
