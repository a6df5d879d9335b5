#pragma once

#include <QObject>
#include <QSocketNotifier>

/** Signals as events of the loop. */
class SignalReader : public QObject
{
    Q_OBJECT

public:
    explicit SignalReader(int descriptor);

signals:
    /** `by_system`: the terminal's or the kernel's own, which the whole group of processes gets. */
    void sig_signal(int number, bool by_system);

private:
    void read_all();

    QSocketNotifier notifier;
};
