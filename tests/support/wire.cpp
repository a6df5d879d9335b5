#include "support/wire.h"

#include "device/kestrometer.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int TIMEOUT_MS = 60000;    // a busy machine is no mistake
constexpr int MOST_AT_ONCE = 65536;  // bytes; more than a line takes

const QByteArray MARKER = "\xFF<end>\xFF";

/** Counts the bytes that an instrument takes from its port. */
class Watcher : public QObject
{
public:
    explicit Watcher(Kestrometer& instrument)
    {
        instrument.installEventFilter(this);
    }

    /** The port's queued announcement, at which the instrument takes all that has arrived. */
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::MetaCall)
            taken += static_cast<Kestrometer*>(watched)->port.bytesAvailable();
        return false;
    }

    qint64 taken = 0;
};
}  // namespace

bool spin_until(const std::function<bool()>& done)
{
    bool late = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&late] { late = true; });
    timer.setSingleShot(true);
    timer.start(TIMEOUT_MS);
    while (!done() && !late)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    return done();
}

Wire::Wire()
{
    QString error;
    if (!terminal.open(error))
        qFatal("%s", qPrintable(error));
    // Before the application opens the port, which it then has for itself.
    marker_end = ::open(terminal.path().toLocal8Bit().constData(), O_WRONLY | O_NOCTTY | O_CLOEXEC);
}

Wire::~Wire()
{
    hang_up();
}

QString Wire::port_name() const
{
    return terminal.port_name();
}

bool Wire::send(const QByteArray& line, Kestrometer& instrument)
{
    return send_bytes(line + "\r\n", instrument);
}

bool Wire::send_bytes(const QByteArray& bytes, Kestrometer& instrument)
{
    Watcher watcher(instrument);
    qint64 sent = 0;
    while (sent < bytes.size()) {
        // The line takes a few kilobytes at a time.
        const qint64 step = terminal.write(bytes.mid(int(sent), MOST_AT_ONCE));
        sent += step;
        if (step == 0 || !spin_until([&] { return watcher.taken >= sent; }))
            return false;
    }
    return true;
}

QByteArray Wire::commands()
{
    // Taken first: a line that is full would not take the marker.
    QByteArray bytes = terminal.read();
    if (::write(marker_end, MARKER.constData(), size_t(MARKER.size())) != MARKER.size())
        return bytes;
    while (!bytes.endsWith(MARKER)) {
        const QByteArray more = terminal.read(1, TIMEOUT_MS);
        if (more.isEmpty())
            return bytes;
        bytes += more;
    }
    bytes.chop(MARKER.size());
    return bytes;
}

void Wire::hang_up()
{
    if (marker_end >= 0)
        ::close(marker_end);
    marker_end = -1;
    terminal.close();
}
