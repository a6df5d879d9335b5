#include "watch/tells/sleep_inhibitor.h"

#include <QDBusReply>

namespace
{
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

SleepInhibitor::SleepInhibitor(int pause_ms) : system(QDBusConnection::SystemBus), pause(pause_ms)
{
}

bool SleepInhibitor::holds() const
{
    return lock.isValid();
}

void SleepInhibitor::set_needed(bool is_needed)
{
    const bool rises = is_needed && !needed;
    const bool again = since_refusal.isValid() && since_refusal.hasExpired(pause);
    needed = is_needed;
    if (!needed)
        lock = QDBusUnixFileDescriptor();
    else if ((rises || again) && !asking && !holds())
        ask();
}

void SleepInhibitor::ask()
{
    asking = true;
    since_refusal.invalidate();
    system.call(inhibit_call(), [this](const QDBusMessage& answer) { take_answer(answer); });
}

void SleepInhibitor::take_answer(const QDBusMessage& answer)
{
    asking = false;
    const QDBusReply<QDBusUnixFileDescriptor> reply = answer;
    if (!reply.isValid()) {
        since_refusal.start();
        if (!refused)
            emit sig_refused(reply.error().message());
        refused = true;
    } else if (needed) {
        lock = reply.value();
        emit sig_held();
    }
}
