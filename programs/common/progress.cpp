#include "programs/common/progress.h"

#include "programs/common/terminal.h"

#include <unistd.h>

namespace
{
constexpr int PATIENCE = 1000;  // milliseconds
constexpr int PAUSE = 200;      // milliseconds
}  // namespace

Progress::Progress(int steps) : all(steps), on_terminal(::isatty(STDERR_FILENO) != 0)
{
    since_start.start();
    since_shown.start();
}

Progress::~Progress()
{
    wipe();
}

void Progress::step()
{
    ++done;
    wipe();
    if (on_terminal && done < all && since_start.elapsed() > PATIENCE &&
        since_shown.elapsed() > PAUSE)
        show();
}

void Progress::show()
{
    tell_bytes(QByteArray::number(done) + " of " + QByteArray::number(all));
    shown = true;
    since_shown.restart();
}

void Progress::wipe()
{
    if (!shown)
        return;
    tell_bytes("\r\x1b[K");
    shown = false;
}
