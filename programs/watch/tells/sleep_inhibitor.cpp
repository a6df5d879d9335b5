#include "watch/tells/sleep_inhibitor.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace
{
constexpr int PATIENCE_MS = 10000;
const QString CONNECTION = "kest-watch-logind";

QDBusMessage inhibit_call()
{
    QDBusMessage call =
        QDBusMessage::createMethodCall("org.freedesktop.login1", "/org/freedesktop/login1",
                                       "org.freedesktop.login1.Manager", "Inhibit");
    call << QString("sleep:idle") << QString("Kest Battery Tester")
         << QString("A battery is being tested") << QString("block");
    return call;
}
}  // namespace

SleepInhibitor::SleepInhibitor(QObject* parent) : QObject(parent)
{
}

SleepInhibitor::~SleepInhibitor()
{
    QDBusConnection::disconnectFromBus(CONNECTION);
}

bool SleepInhibitor::holds() const
{
    return lock.isValid();
}

void SleepInhibitor::set_needed(bool is_needed)
{
    const bool rises = is_needed && !needed;
    needed = is_needed;
    if (!needed)
        lock = QDBusUnixFileDescriptor();
    else if (rises && !asking && !holds())
        ask();
}

void SleepInhibitor::ask()
{
    if (!QDBusConnection(CONNECTION).isConnected())
        QDBusConnection::disconnectFromBus(CONNECTION);
    const QDBusConnection system =
        QDBusConnection::connectToBus(QDBusConnection::SystemBus, CONNECTION);
    // Nobody would ever hear of a call without a connection.
    if (!system.isConnected()) {
        refuse(system.lastError().message());
        return;
    }
    asking = true;
    auto* const watcher =
        new QDBusPendingCallWatcher(system.asyncCall(inhibit_call(), PATIENCE_MS), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        asking = false;
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = *watcher;
        if (reply.isError())
            refuse(reply.error().message());
        else if (needed)
            lock = reply.value();
        if (holds())
            emit sig_held();
    });
}

void SleepInhibitor::refuse(const QString& reason)
{
    if (!refused)
        emit sig_refused(reason);
    refused = true;
}
