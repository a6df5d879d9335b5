#include "simulator/pseudo_terminal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace
{
bool set_raw(int descriptor)
{
    termios settings = {};
    if (::tcgetattr(descriptor, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    return ::tcsetattr(descriptor, TCSANOW, &settings) == 0;
}
}  // namespace

PseudoTerminal::PseudoTerminal() = default;

PseudoTerminal::~PseudoTerminal()
{
    close();
}

bool PseudoTerminal::open(QString& error)
{
    close();
    master = ::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    char name[128] = {};
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0 ||
        ::ptsname_r(master, name, sizeof name) != 0) {
        error = QString("No pseudo-terminal to be had: %1").arg(std::strerror(errno));
        close();
        return false;
    }
    slave_path = QString::fromLocal8Bit(name);
    keeper = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (keeper < 0 || !set_raw(keeper)) {
        error = QString("%1 cannot be opened: %2").arg(slave_path, std::strerror(errno));
        close();
        return false;
    }
    return true;
}

void PseudoTerminal::close()
{
    for (int* end : {&keeper, &master}) {
        if (*end >= 0)
            ::close(*end);
        *end = -1;
    }
    slave_path.clear();
}

void PseudoTerminal::hang_up()
{
    if (master >= 0)
        ::close(master);
    master = -1;
    slave_path.clear();
}

qint64 PseudoTerminal::write(const QByteArray& bytes)
{
    qint64 taken = 0;
    while (master >= 0 && taken < bytes.size()) {
        const ssize_t step =
            ::write(master, bytes.constData() + taken, size_t(bytes.size() - taken));
        if (step < 0 && errno == EINTR)
            continue;
        if (step <= 0)
            break;
        taken += step;
    }
    return taken;
}

QByteArray PseudoTerminal::read()
{
    QByteArray bytes;
    char chunk[4096];
    while (master >= 0) {
        const ssize_t step = ::read(master, chunk, sizeof chunk);
        if (step < 0 && errno == EINTR)
            continue;
        if (step <= 0)
            break;
        bytes.append(chunk, int(step));
    }
    return bytes;
}

QByteArray PseudoTerminal::read(int count, int timeout_ms)
{
    QByteArray bytes = read();
    while (bytes.size() < count) {
        pollfd waiting = {master, POLLIN, 0};
        if (::poll(&waiting, 1, timeout_ms) <= 0)
            break;
        const QByteArray more = read();
        if (more.isEmpty())
            break;
        bytes += more;
    }
    return bytes;
}

bool PseudoTerminal::has_unread() const
{
    // Not FIONREAD: it misses what the system is still carrying across.
    pollfd waiting = {keeper, POLLIN, 0};
    return master >= 0 && ::poll(&waiting, 1, 0) > 0 && (waiting.revents & POLLIN) != 0;
}

void PseudoTerminal::make_fresh()
{
    if (master < 0)
        return;
    // A program that was killed has left the line to itself, with settings of its own.
    ::ioctl(keeper, TIOCNXCL);
    set_raw(keeper);
    ::tcflush(keeper, TCIFLUSH);
}

QString PseudoTerminal::path() const
{
    return slave_path;
}

QString PseudoTerminal::port_name() const
{
    return slave_path.mid(int(std::strlen("/dev/")));
}

int PseudoTerminal::descriptor() const
{
    return master;
}
