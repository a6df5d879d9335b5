#include "programs/common/progress.h"

#include "programs/common/terminal.h"

#include <chrono>
#include <unistd.h>

namespace
{
constexpr int PATIENCE = 1000;  // milliseconds
constexpr int PAUSE = 200;      // milliseconds

/** One that nobody sets. */
qint64 system_clock()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}
}  // namespace

Progress::Progress(int steps, std::function<qint64()> clock)
    : all(steps),
      on_terminal(::isatty(STDERR_FILENO) != 0),
      now(clock ? std::move(clock) : system_clock),
      start(now()),
      shown_at(start)
{
}

Progress::~Progress()
{
    wipe();
}

void Progress::step()
{
    ++done;
    wipe();
}

void Progress::look(qint64 bytes_read)
{
    constexpr qint64 MEGABYTE = 1000000;
    const qint64 time = now();
    if (!on_terminal || time - start <= PATIENCE || time - shown_at <= PAUSE)
        return;
    wipe();
    tell_bytes(QByteArray::number(done) + " of " + QByteArray::number(all) + ", " +
               QByteArray::number(bytes_read / MEGABYTE) + " MB read");
    shown_at = time;
    shown = true;
}

void Progress::wipe()
{
    if (!shown)
        return;
    tell_bytes("\r\x1b[K");
    shown = false;
}
