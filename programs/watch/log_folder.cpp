#include "watch/log_folder.h"

#include <cstdlib>
#include <dirent.h>
#include <memory>

namespace
{
const QByteArray LOG_ENDING = ".csv";
const QByteArray EVENTS_ENDING = ".txt";
}  // namespace

LogFolder::LogFolder(const QByteArray& folder_path, bool on_network, const FolderProbe::Ask& ask)
    : path(folder_path),
      network(on_network),
      probe(folder_path, ask),
      follower(folder_path, !on_network)
{
}

bool LogFolder::answers()
{
    return !network || probe.answers();
}

void LogFolder::look()
{
    grown.clear();
    const std::unique_ptr<char, void (*)(void*)> real(::realpath(path.constData(), nullptr),
                                                      ::free);
    real_path = real.get();
    const FolderNews news = follower.news();
    if (news.all) {
        list();
        return;
    }
    for (const QByteArray& name : news.names)
        if (name.endsWith(LOG_ENDING))
            look_at(path + '/' + name);
}

void LogFolder::list()
{
    const QList<QByteArray> before = logs.keys();
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir(path.constData()), ::closedir);
    there = folder != nullptr;
    QSet<QByteArray> found;
    while (there) {
        const dirent* const entry = ::readdir(folder.get());
        if (entry == nullptr)
            break;
        const QByteArray name = entry->d_name;
        if (name.endsWith(LOG_ENDING))
            found.insert(path + '/' + name);
    }
    for (const QByteArray& log : before)
        if (!found.contains(log))
            forget(log);
    for (const QByteArray& log : found)
        look_at(log);
}

void LogFolder::look_at(const QByteArray& log)
{
    const FileState state = state_of_file(log);
    if (!state.exists) {
        forget(log);
        return;
    }
    const auto known = logs.constFind(log);
    const bool is_known = known != logs.constEnd() && known->identity == state.identity;
    if (is_known && state.size > known->size)
        grown.insert(log);
    if (!is_known && known != logs.constEnd())
        paths.remove(known->identity);
    logs.insert(log, state);
    paths.insert(state.identity, log);
}

void LogFolder::forget(const QByteArray& log)
{
    const auto known = logs.find(log);
    if (known == logs.end())
        return;
    if (paths.value(known->identity) == log)
        paths.remove(known->identity);
    logs.erase(known);
}

QByteArray LogFolder::path_of(const FileIdentity& file) const
{
    return paths.value(file);
}

bool LogFolder::is_there() const
{
    return there;
}

QByteArray event_log_of(const QByteArray& log)
{
    return log.left(log.lastIndexOf('.')) + EVENTS_ENDING;
}
