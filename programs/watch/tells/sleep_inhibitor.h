#pragma once

#include "watch/tells/bus_line.h"

#include <QDBusUnixFileDescriptor>
#include <QElapsedTimer>

/** Keeps the computer from falling asleep, and from counting as idle, as long as it is needed. */
class SleepInhibitor : public QObject
{
    Q_OBJECT

public:
    /** @param pause_ms after a refusal, until it is asked for again */
    explicit SleepInhibitor(int pause_ms = 60000);

    /** To be called now and then as long as it is needed. */
    void set_needed(bool is_needed);
    bool holds() const;

signals:
    void sig_held();
    /** Once only: the system does not do it, with its reason. */
    void sig_refused(const QString& reason);

private:
    void ask();
    void take_answer(const QDBusMessage& answer);

    BusLine system;
    QElapsedTimer since_refusal;
    int pause;
    QDBusUnixFileDescriptor lock;  ///< the computer stays awake until its last copy is closed
    bool needed = false;
    bool asking = false;
    bool refused = false;
};
