#include "device/off_at_exit.h"

#include "device/kestrometer_state.h"

#include <QByteArray>

#include <algorithm>
#include <cstdlib>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace
{
struct OpenLines
{
    pid_t owner;  ///< a process that was forked has the same list, and no say in it
    std::vector<int> descriptors;
};

OpenLines* open_lines = nullptr;

/** Written straight to the line: of the objects above it nobody knows which are left. */
void command_off(int line)
{
    const QByteArray off = command_for_state(Off);
    if (::write(line, off.constData(), size_t(off.size())) == off.size())
        return;
    // Full of what was commanded before, which counts no more.
    ::tcflush(line, TCOFLUSH);
    static_cast<void>(!::write(line, off.constData(), size_t(off.size())));
}

/** Made at the first line, and on purpose never deleted: it outlives every static object. */
OpenLines& lines()
{
    if (open_lines == nullptr) {
        open_lines = new OpenLines{::getpid(), {}};
        std::atexit(command_all_off);
    }
    return *open_lines;
}
}  // namespace

void command_off_at_exit(int line)
{
    lines().descriptors.push_back(line);
}

void forget_at_exit(int line)
{
    std::vector<int>& descriptors = lines().descriptors;
    descriptors.erase(std::remove(descriptors.begin(), descriptors.end(), line), descriptors.end());
}

void command_all_off()
{
    if (open_lines == nullptr || open_lines->owner != ::getpid())
        return;
    for (const int line : open_lines->descriptors)
        command_off(line);
}
