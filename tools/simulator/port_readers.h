#pragma once

#include <QObject>
#include <QString>

/**
 * Tells whether anybody has a device file open, beside those who had it open at watch().
 *
 * A pseudo-terminal keeps what nobody reads, and would hand a reader minutes of old lines when it
 * comes; a serial port loses them. Where the system cannot tell, there is always a reader.
 */
class PortReaders : public QObject
{
    Q_OBJECT

public:
    ~PortReaders() override;

    void watch(const QString& path);
    void stop();
    bool any() const;
    /** Tells at once what has happened by now. */
    void catch_up();

signals:
    void sig_first_one_came();
    void sig_last_one_left();

private:
    void count_event(unsigned mask);

    QObject* notifier = nullptr;  ///< owned by this object
    int events = -1;              ///< descriptor; -1 while nothing is watched
    int count = 0;
};
