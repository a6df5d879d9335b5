#include "demo/simulator_process.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace
{
constexpr int START_TIMEOUT_MS = 10000;

/** Beside the demo where both are installed, in a folder of its own where they were built. */
QString simulator_program()
{
    const QDir here(QCoreApplication::applicationDirPath());
    const QString installed = here.filePath("kest-simulator");
    return QFile::exists(installed) ? installed : here.filePath("../simulator/kest-simulator");
}
}  // namespace

SimulatorProcess::~SimulatorProcess()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(START_TIMEOUT_MS))
        process.kill();
}

bool SimulatorProcess::start(const QStringList& arguments, QString& error)
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(simulator_program(), arguments);
    while (process.state() != QProcess::NotRunning && !process.canReadLine())
        if (!process.waitForReadyRead(START_TIMEOUT_MS))
            break;
    const QString path = QString::fromLocal8Bit(process.readLine()).trimmed();
    if (!path.startsWith("/dev/")) {
        error = QString("%1 gives no port: %2").arg(process.program(), process.errorString());
        return false;
    }
    port = path.mid(QString("/dev/").size());
    return true;
}

QString SimulatorProcess::port_name() const
{
    return port;
}
