#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/** One simulated instrument: a kest-simulator of its own, which ends with this object. */
class SimulatorProcess
{
public:
    SimulatorProcess() = default;
    ~SimulatorProcess();

    /** Starts the program and learns its port; false, with the reason in `error`, if that fails. */
    bool start(const QStringList& arguments, QString& error);

    /** The port as the serial port's name, "pts/5". */
    QString port_name() const;

private:
    QProcess process;
    QString port;
};
