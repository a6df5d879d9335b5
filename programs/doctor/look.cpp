#include "doctor/look.h"

#include <pwd.h>
#include <sys/timex.h>
#include <unistd.h>

namespace
{
QString user_name()
{
    const passwd* const entry = ::getpwuid(::getuid());
    return entry == nullptr ? QString::number(::getuid()) : QString::fromLocal8Bit(entry->pw_name);
}

bool kernel_keeps_time()
{
    timex clock = {};
    return ::adjtimex(&clock) != TIME_ERROR;
}
}  // namespace

Seen look(const FileView& view)
{
    const Processes processes(view);
    Seen seen;
    seen.user = user_name();
    seen.modem_manager = !processes.of("ModemManager").isEmpty();
    seen.brltty = !processes.of("brltty").isEmpty();
    // Its start at boot; by a rule of udev, it starts for the adapters that the rule names.
    seen.brltty_is_a_service =
        !view.link("/etc/systemd/system/sysinit.target.wants/brltty.service").isEmpty();
    seen.copies = processes.of("kest-battery-tester", true);
    look_at_ports(view, processes, seen);
    seen.stores = look_at_stores();
    seen.folders = look_at_folders(view);
    seen.sleepers = look_at_sleepers(view);
    seen.clock = look_at_clock(view);
    return seen;
}

SeenClock look_at_clock(const FileView& view)
{
    SeenClock clock;
    clock.synchronised = view.exists("/run/systemd/timesync/synchronized") ||
                         (view.is_this_machine() && kernel_keeps_time());
    clock.has_zone = view.exists("/etc/localtime") || !qEnvironmentVariableIsEmpty("TZ");
    return clock;
}
