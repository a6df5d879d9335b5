#include "watch/tells/bus_line.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QEvent>
#include <QThread>

namespace
{
constexpr int PATIENCE_MS = 10000;  // for an answer
constexpr int PARTING_MS = 1000;    // for what goes on when the line goes

bool stuck = false;

struct WorkEvent : QEvent
{
    explicit WorkEvent(std::function<void()> what) : QEvent(User), work(std::move(what))
    {
    }

    const std::function<void()> work;
};

/** Does in its own thread what others give it. */
class Worker : public QObject
{
public:
    void give(const std::function<void()>& work)
    {
        QCoreApplication::postEvent(this, new WorkEvent(work));
    }

protected:
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        static_cast<WorkEvent*>(event)->work();
        return true;
    }
};

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
    Worker there;           ///< lives in the thread
    Worker here;            ///< lives where the line does
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
    caller->there.give([caller = caller] {
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
    caller->there.give([caller = caller, message, done] {
        const QDBusMessage answer = answer_to(message, caller->type, caller->name);
        caller->here.give([caller, answer, done] {
            if (!caller->forsaken)
                done(answer);
        });
    });
}

bool BusLine::any_is_stuck()
{
    return stuck;
}
