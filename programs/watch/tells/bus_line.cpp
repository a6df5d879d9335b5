#include "watch/tells/bus_line.h"

#include <QDBusError>
#include <QThread>

namespace
{
constexpr int PATIENCE_MS = 10000;  // for an answer
constexpr int PARTING_MS = 1000;    // for what goes on when the line goes

bool stuck = false;

/** Each line has a connection of its own. */
QString next_name()
{
    static int number = 0;
    return QString("kest-watch-%1").arg(++number);
}

QDBusMessage answer_to(const QDBusMessage& message, QDBusConnection::BusType type,
                       const QString& name)
{
    // A connection that was refused or has broken stays so: the next call makes a new one.
    if (!QDBusConnection(name).isConnected())
        QDBusConnection::disconnectFromBus(name);
    const QDBusConnection bus = QDBusConnection::connectToBus(type, name);
    // Nobody would ever hear of a call without a connection.
    return bus.isConnected() ? bus.call(message, QDBus::Block, PATIENCE_MS)
                             : QDBusMessage::createError(bus.lastError());
}
}  // namespace

/** What a line has in its thread, and where the answers come back to. */
struct BusLine::Caller
{
    QThread thread;
    QObject there;          ///< lives in the thread
    QObject here;           ///< lives where the line does
    bool forsaken = false;  ///< the line is gone; to be looked at only where it lived
    QDBusConnection::BusType type = QDBusConnection::SessionBus;
    QString name;
};

BusLine::BusLine(QDBusConnection::BusType bus, QObject* parent)
    : QObject(parent), caller(new Caller)
{
    caller->type = bus;
    caller->name = next_name();
    caller->there.moveToThread(&caller->thread);
    caller->thread.start();
}

BusLine::~BusLine()
{
    QMetaObject::invokeMethod(&caller->there, [caller = caller] {
        QDBusConnection::disconnectFromBus(caller->name);
        caller->thread.quit();
    });
    if (caller->thread.wait(PARTING_MS)) {
        delete caller;
        return;
    }
    caller->forsaken = true;
    stuck = true;
}

void BusLine::call(const QDBusMessage& message, const Done& done)
{
    QMetaObject::invokeMethod(&caller->there, [caller = caller, message, done] {
        const QDBusMessage answer = answer_to(message, caller->type, caller->name);
        QMetaObject::invokeMethod(
            &caller->here,
            [caller, answer, done] {
                if (!caller->forsaken)
                    done(answer);
            },
            Qt::QueuedConnection);
    });
}

bool BusLine::any_is_stuck()
{
    return stuck;
}
