#include "simulator/line_input.h"

#include <cerrno>
#include <unistd.h>

namespace
{
// Nobody types so much: a line beyond it is given as it stands.
constexpr int LONGEST_LINE = 4096;
}  // namespace

LineInput::LineInput(int from) : notifier(from, QSocketNotifier::Read)
{
    connect(&notifier, &QSocketNotifier::activated, this, &LineInput::read_some);
}

void LineInput::read_some()
{
    char chunk[4096];
    const ssize_t size = ::read(int(notifier.socket()), chunk, sizeof chunk);
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    buffer.append(chunk, int(std::max<ssize_t>(size, 0)));
    for (int end = 0; (end = buffer.indexOf('\n')) >= 0;) {
        const QByteArray line = buffer.left(end);
        buffer.remove(0, end + 1);
        give_line(line);
    }
    if (size > 0 && buffer.size() < LONGEST_LINE)
        return;
    give_line(buffer);
    buffer.clear();
    if (size > 0)
        return;
    notifier.setEnabled(false);
    emit sig_end();
}

void LineInput::give_line(const QByteArray& line)
{
    if (!line.trimmed().isEmpty())
        emit sig_line(QString::fromLocal8Bit(line));
}
