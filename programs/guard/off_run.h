#pragma once

#include "guard/guard_clock.h"
#include "guard/guard_options.h"
#include "guard/switching_lock.h"
#include "guard/switching_run.h"
#include "programs/common/signal_reader.h"

#include <QObject>
#include <QStringList>

/** Instruments switched off by hand. */
class OffRun : public QObject
{
    Q_OBJECT

public:
    OffRun(const GuardOptions& guard_options, const QStringList& ports_of_this_machine,
           int signal_descriptor);

    /** Ends the event loop with 0 if all is off, with 1 if something is left to do. */
    void start();

private:
    QStringList paths() const;
    bool add_port(const QString& path);
    void take_outcome(const QString& line, Fate fate, const QString& detail = QString());
    void take_signal(int number);

    GuardOptions options;
    QStringList machine_ports;
    GuardClock clock;
    SerialLines lines;
    Teller teller;
    SwitchingLock lock;
    SignalReader signal_reader;
    SwitchingRun run;
};
