#include "guard/holders.h"

#include "device/raw_traffic.h"

#include <algorithm>
#include <unistd.h>

namespace
{
bool holds(const OpenFiles& files, const SerialLine& line)
{
    return std::any_of(files.devices.begin(), files.devices.end(),
                       [&line](const OpenDevice& file) { return is_open_on(file, line); });
}
}  // namespace

QMap<QString, QString> other_holders(const QVector<SerialLine>& lines, const SystemRoots& roots)
{
    QMap<QString, QString> holders;
    for (const pid_t process : all_processes(roots)) {
        if (process == ::getpid())
            continue;
        const OpenFiles files = open_files_of(process, roots);
        // Whoever has the far end of a pseudo-terminal is the instrument, and may keep ours open.
        for (const SerialLine& line : lines)
            if (holds(files, line) && !files.have_far_end_of(line.path))
                holders.insert(line.path, QString("%1 (process %2)")
                                              .arg(sanitised_text(name_of_process(process, roots)))
                                              .arg(process));
    }
    return holders;
}
