#include "watch/log_holders.h"

#include "programs/common/open_files.h"

#include <algorithm>

LogHolders::LogHolders(SystemRoots system_roots) : roots(std::move(system_roots))
{
}

void LogHolders::scan(const std::function<bool(const QByteArray& path)>& may_touch)
{
    const auto is_wanted = [&may_touch](const QByteArray& path) {
        return (path.endsWith(".csv") || path.endsWith(".csv (deleted)")) && may_touch(path);
    };
    holders.clear();
    for (const pid_t process : all_processes(roots)) {
        for (const WrittenFile& file : written_files_of(process, is_wanted, roots)) {
            Holder holder;
            holder.process = process;
            holder.started = start_of_process(process, roots);
            holder.descriptor = file.descriptor;
            holder.program = name_of_process(process, roots);
            holders.insert({file.device, file.inode}, holder);
        }
    }
}

Holder LogHolders::of(const FileIdentity& file) const
{
    return holders.value(file);
}

QList<FileIdentity> LogHolders::held() const
{
    return holders.keys();
}

bool LogHolders::holds(const Holder& holder, const FileIdentity& file) const
{
    return holder.is_known() &&
           has_open(holder.process, holder.descriptor, file.device, file.inode, roots);
}

bool LogHolders::lives(const Holder& holder) const
{
    // One that has ended and that nobody has asked for its status yet still has a number, and one that
    // ends has closed its files before.
    constexpr char ENDED[] = {'Z', 'X'};
    const char state = state_of_process(holder.process, roots);
    return holder.is_known() && start_of_process(holder.process, roots) == holder.started &&
           std::find(std::begin(ENDED), std::end(ENDED), state) == std::end(ENDED) &&
           !is_ending(holder.process, roots);
}

bool LogHolders::program_runs_again(const Holder& holder) const
{
    return std::any_of(holders.begin(), holders.end(), [&holder](const Holder& other) {
        return other.program == holder.program && other.started > holder.started;
    });
}
