#include "simulator/instrument_port.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace
{
// About the time of one byte at 9600 baud.
constexpr int BYTE_MS = 1;
}  // namespace

InstrumentPort::InstrumentPort(const QString& link_path) : link(link_path)
{
    next_byte.setSingleShot(true);
    next_byte.setTimerType(Qt::PreciseTimer);
    connect(&next_byte, &QTimer::timeout, this, &InstrumentPort::send_queue);
    connect(&readers, &PortReaders::sig_first_one_came, this, &InstrumentPort::sig_reader_came);
    connect(&readers, &PortReaders::sig_last_one_left, this, &InstrumentPort::drop_queue);
    connect(&readers, &PortReaders::sig_last_one_left, this, &InstrumentPort::sig_readers_left);
}

InstrumentPort::~InstrumentPort()
{
    close();
}

bool InstrumentPort::open(QString& error)
{
    close();
    if (!terminal.open(error) || !make_link(error)) {
        terminal.close();
        return false;
    }
    readers.watch(terminal.path());
    readable = std::make_unique<QSocketNotifier>(terminal.descriptor(), QSocketNotifier::Read);
    writable = std::make_unique<QSocketNotifier>(terminal.descriptor(), QSocketNotifier::Write);
    writable->setEnabled(false);
    connect(readable.get(), &QSocketNotifier::activated, this, [this] { catch_up(); });
    connect(writable.get(), &QSocketNotifier::activated, this, &InstrumentPort::send_queue);
    return true;
}

void InstrumentPort::catch_up()
{
    const QByteArray bytes = terminal.read();
    // Whoever sends has come before.
    readers.catch_up();
    if (!bytes.isEmpty())
        emit sig_received(bytes);
}

void InstrumentPort::close()
{
    if (!is_open())
        return;
    readable.reset();
    writable.reset();
    readers.stop();
    next_byte.stop();
    queue.clear();
    queued_bytes = 0;
    remove_link();
    terminal.hang_up();
}

bool InstrumentPort::is_open() const
{
    return terminal.descriptor() >= 0;
}

QString InstrumentPort::path() const
{
    return terminal.path();
}

bool InstrumentPort::make_link(QString& error)
{
    const QFileInfo present(link);
    if (link.isEmpty())
        return true;
    if (present.exists() && !present.isSymLink()) {
        error = QString("%1 exists and is no symbolic link.").arg(link);
        return false;
    }
    // By another name first, so that the link changes in one step.
    const QByteArray next = QFile::encodeName(QString("%1.%2").arg(link).arg(::getpid()));
    const QByteArray name = QFile::encodeName(link);
    if (::symlink(QFile::encodeName(path()).constData(), next.constData()) == 0 &&
        std::rename(next.constData(), name.constData()) == 0)
        return true;
    error =
        QString("%1 cannot be made: %2.").arg(link, QString::fromLocal8Bit(std::strerror(errno)));
    ::unlink(next.constData());
    return false;
}

void InstrumentPort::remove_link()
{
    // Another simulator may have taken the name over.
    if (!link.isEmpty() && QFile::symLinkTarget(link) == path())
        QFile::remove(link);
}

void InstrumentPort::send(const QByteArray& bytes, bool byte_by_byte)
{
    if (bytes.isEmpty() || !is_open() || !readers.any() || queued_bytes >= queue_limit)
        return;
    queue.push_back({bytes, byte_by_byte});
    queued_bytes += bytes.size();
    if (queue.size() == 1)
        send_queue();
}

bool InstrumentPort::all_read() const
{
    return queue.empty() && !terminal.has_unread();
}

bool InstrumentPort::has_reader() const
{
    return readers.any();
}

void InstrumentPort::send_queue()
{
    writable->setEnabled(false);
    if (next_byte.isActive())
        return;
    while (!queue.empty() && send_piece(queue.front()))
        queue.pop_front();
}

/** True if nothing of the piece is left; otherwise what goes on with it has been started. */
bool InstrumentPort::send_piece(Piece& piece)
{
    const QByteArray next = piece.byte_by_byte ? piece.bytes.left(1) : piece.bytes;
    const qint64 taken = terminal.write(next);
    piece.bytes.remove(0, int(taken));
    queued_bytes -= taken;
    if (taken < next.size())
        writable->setEnabled(true);
    else if (!piece.bytes.isEmpty())
        next_byte.start(BYTE_MS);
    return piece.bytes.isEmpty();
}

void InstrumentPort::drop_queue()
{
    queue.clear();
    queued_bytes = 0;
    next_byte.stop();
    writable->setEnabled(false);
    terminal.make_fresh();
}
