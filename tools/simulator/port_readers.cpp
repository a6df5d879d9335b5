#include "simulator/port_readers.h"

#include <QFile>
#include <QSocketNotifier>

#include <sys/inotify.h>
#include <unistd.h>

PortReaders::~PortReaders()
{
    stop();
}

void PortReaders::watch(const QString& path)
{
    stop();
    events = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    const QByteArray name = QFile::encodeName(path);
    if (events < 0 || ::inotify_add_watch(events, name.constData(), IN_OPEN | IN_CLOSE) < 0) {
        stop();
        return;
    }
    auto* socket = new QSocketNotifier(events, QSocketNotifier::Read, this);
    connect(socket, &QSocketNotifier::activated, this, [this] { catch_up(); });
    notifier = socket;
}

void PortReaders::stop()
{
    delete notifier;
    notifier = nullptr;
    if (events >= 0)
        ::close(events);
    events = -1;
    count = 0;
}

bool PortReaders::any() const
{
    return events < 0 || count > 0;
}

void PortReaders::catch_up()
{
    if (events < 0)
        return;
    alignas(inotify_event) char buffer[4096];
    for (ssize_t size = 0; (size = ::read(events, buffer, sizeof buffer)) > 0;) {
        for (const char* at = buffer; at < buffer + size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            at += sizeof *event + event->len;
            count_event(event->mask);
        }
    }
}

/** One by one, so that a reader who leaves and one who comes are seen even if both are reported at once. */
void PortReaders::count_event(unsigned mask)
{
    if ((mask & IN_OPEN) != 0 && ++count == 1)
        emit sig_first_one_came();
    if ((mask & IN_CLOSE) != 0 && --count == 0)
        emit sig_last_one_left();
}
