#include "guard/switching_lock.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

namespace
{
constexpr int TRIES = 100;
constexpr int TRY_MS = 10;
}  // namespace

SwitchingLock::SwitchingLock(const QString& lock_folder) : folder(lock_folder)
{
}

SwitchingLock::~SwitchingLock()
{
    release();
}

int SwitchingLock::open_folder() const
{
    return ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

void SwitchingLock::hold()
{
    release();
    held = open_folder();
    // A starting guard that is just looking has it for itself for a moment. The instruments wait no longer
    // than that for anybody.
    for (int i = 0; held >= 0 && i < TRIES && ::flock(held, LOCK_SH | LOCK_NB) != 0; ++i)
        ::poll(nullptr, 0, TRY_MS);
}

void SwitchingLock::release()
{
    if (held >= 0)
        ::close(held);
    held = -1;
}

bool SwitchingLock::is_held_by_another() const
{
    const int look = open_folder();
    const bool busy = look >= 0 && ::flock(look, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (look >= 0)
        ::close(look);
    return busy;
}
