#pragma once

#include "simulator/port_readers.h"
#include "simulator/pseudo_terminal.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <deque>
#include <memory>

/**
 * The instrument's port as the system sees it: a pseudo-terminal that may vanish and come back, under
 * the lasting name of a symbolic link.
 *
 * Never blocks: what a slow reader leaves waits in a queue, and what no one reads is lost.
 */
class InstrumentPort : public QObject
{
    Q_OBJECT

public:
    /** An empty path for no link. */
    explicit InstrumentPort(const QString& link_path);
    ~InstrumentPort() override;

    bool open(QString& error);
    /** Hangs up and takes the link away. */
    void close();
    bool is_open() const;
    QString path() const;

    /** Sends in one write, or each byte in a write of its own with a pause behind it. */
    void send(const QByteArray& bytes, bool byte_by_byte);
    /** Takes what has arrived, and whoever has come or gone, before the event loop tells of it. */
    void catch_up();
    /** True if nothing waits to be sent or read. */
    bool all_read() const;
    /** True if anybody has the port open to read. */
    bool has_reader() const;

    /** Bytes that may wait for a slow reader: about what a serial driver holds. More is lost. */
    qint64 queue_limit = 65536;

signals:
    void sig_received(const QByteArray& bytes);
    void sig_reader_came();
    void sig_readers_left();

private:
    struct Piece
    {
        QByteArray bytes;
        bool byte_by_byte;
    };

    bool make_link(QString& error);
    void remove_link();
    void send_queue();
    bool send_piece(Piece& piece);
    void drop_queue();

    PseudoTerminal terminal;
    PortReaders readers;
    std::unique_ptr<QSocketNotifier> readable;
    std::unique_ptr<QSocketNotifier> writable;  ///< enabled while the line takes no more
    QTimer next_byte;
    std::deque<Piece> queue;
    qint64 queued_bytes = 0;
    QString link;
};
