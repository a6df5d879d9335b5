#pragma once

#include <QByteArray>
#include <QString>

/** The instrument's end of a serial line: the master of a pseudo-terminal, raw and non-blocking. */
class PseudoTerminal
{
public:
    PseudoTerminal();
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    /** Makes the pair; false, with the reason in `error`, when the system has none to give. */
    bool open(QString& error);
    /** Hangs up: to the other side the port has vanished. */
    void close();
    /** As a plug that is pulled: the path is gone, but its number is nobody else's until the next open(). */
    void hang_up();

    /** Writes what the line takes; the rest is dropped, as on a line nobody reads. @return bytes taken */
    qint64 write(const QByteArray& bytes);
    /** All that has arrived by now, without waiting. */
    QByteArray read();
    /** Waits until `count` bytes have arrived or `timeout_ms` is over, and gives what there is. */
    QByteArray read(int count, int timeout_ms);
    /** True if something has been written and nobody has read it. */
    bool has_unread() const;
    /** As a real line is for the next reader: nothing unread, raw, and nobody's alone. */
    void make_fresh();

    /** The other side as a file name, "/dev/pts/3". */
    QString path() const;
    /** The other side as the serial port's name, "pts/3". */
    QString port_name() const;
    int descriptor() const;

private:
    int master = -1;
    int keeper = -1;  ///< the other side held open, so that no reader's absence counts as a hang-up
    QString slave_path;
};
