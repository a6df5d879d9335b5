#include "doctor/port_ear.h"

#include "device/telemetry_line.h"

#include <QElapsedTimer>
#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace
{
constexpr int KEPT_BYTES = 4096;
constexpr int LONGEST_LINE = 65536;

/**
 * 9600 baud, and nothing made of what comes. It stays so on purpose: a port begins with its echo on, and
 * an echoed C, D, O or U would be a command.
 */
bool set_quiet(int port)
{
    termios settings = {};
    if (::tcgetattr(port, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, B9600);
    settings.c_cflag |= CLOCAL | CREAD;
    return ::tcsetattr(port, TCSANOW, &settings) == 0;
}

bool is_telemetry(const QString& line)
{
    double volts = 0.0;
    double amps = 0.0;
    int number = 0;
    KestrometerState state = Unknown;
    return read_telemetry_line(line, volts, amps, number, state);
}
}  // namespace

PortEar::PortEar(QString path_of_port, LineHeard line_heard)
    : path(std::move(path_of_port)), tell(std::move(line_heard))
{
}

PortEar::~PortEar()
{
    close();
}

bool PortEar::open(QString& error)
{
    port =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (port < 0) {
        error = QString("cannot be opened: %1").arg(std::strerror(errno));
        return false;
    }
    if (!set_quiet(port)) {
        error = "is no serial port";
        close();
        return false;
    }
    speech.listened = true;
    return true;
}

int PortEar::descriptor() const
{
    return port;
}

void PortEar::close()
{
    if (port >= 0)
        ::close(port);
    port = -1;
}

void PortEar::take()
{
    char chunk[4096];
    const ssize_t size = ::read(port, chunk, sizeof chunk);
    if (size < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (size <= 0) {
        close();
        return;
    }
    speech.bytes.append(chunk, qMin(int(size), KEPT_BYTES - speech.bytes.size()));
    rest.append(chunk, int(size));
    take_lines();
}

void PortEar::take_lines()
{
    for (int end = 0; (end = rest.indexOf("\r\n")) >= 0; rest.remove(0, end + 2))
        take_line(QString::fromUtf8(rest.constData(), end));
    // Whoever never ends a line speaks another language.
    if (rest.size() > LONGEST_LINE)
        rest.clear();
}

void PortEar::take_line(const QString& line)
{
    ++speech.lines;
    if (is_telemetry(line)) {
        ++speech.valid;
        speech.telemetry = line;
    } else {
        speech.other = line;
    }
    if (tell)
        tell(line);
}

void listen(const std::vector<PortEar*>& ears, int seconds, Listening listening)
{
    const bool to_the_end = listening == Listening::AllTheTime;
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        std::vector<pollfd> waiting;
        std::vector<PortEar*> heard;
        for (PortEar* ear : ears) {
            if (ear->descriptor() < 0 || (ear->speech.valid > 0 && !to_the_end))
                continue;
            waiting.push_back({ear->descriptor(), POLLIN, 0});
            heard.push_back(ear);
        }
        const qint64 left = seconds * qint64(1000) - clock.elapsed();
        if (heard.empty() || left <= 0)
            return;
        ::poll(waiting.data(), waiting.size(), int(left));
        for (std::size_t i = 0; i < heard.size(); ++i)
            if (waiting[i].revents != 0)
                heard[i]->take();
    }
}
