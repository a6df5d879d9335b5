#include "programs/common/desktop_message.h"
#include "watch/tells/event_text.h"
#include "watch/tells/telling.h"
#include "watch/tells/ways.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QHash>

namespace
{
constexpr int MOST_MESSAGES = 20;  // whoever comes to the desktop is not to be buried
constexpr int PATIENCE_MS = 10000;
const QString CONNECTION = "kest-watch-desktop";

/** The desktop's end of the session's bus. What it shows of a condition is replaced by what follows. */
class Desktop : public QObject
{
public:
    explicit Desktop(QObject* owner) : QObject(owner)
    {
    }
    ~Desktop() override
    {
        QDBusConnection::disconnectFromBus(CONNECTION);
    }
    void send(const Event& event, const Answer& answer);

private:
    void take_answer(const QDBusPendingReply<uint>& reply, const Event& event,
                     const Answer& answer);

    QHash<QByteArray, uint> shown;  ///< the desktop's number, by condition and log
};

QByteArray key_of(const Event& event)
{
    return QByteArray::number(int(event.situation.condition)) + event.situation.log;
}

QDBusConnection connected()
{
    // A connection that was refused or has broken stays so: the next message makes a new one.
    if (!QDBusConnection(CONNECTION).isConnected())
        QDBusConnection::disconnectFromBus(CONNECTION);
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, CONNECTION);
}

DesktopMessage message_for(const Event& event, uint replaces)
{
    const bool holds = event.change == Change::Begins || event.change == Change::Lasts;
    DesktopMessage message;
    message.headline = title_of(event);
    message.text = message_of(event);
    message.stays = holds && has(event.situation.condition, URGENT);
    message.replaces = replaces;
    return message;
}

void Desktop::send(const Event& event, const Answer& answer)
{
    if (!has_session_bus()) {
        answer(Arrival::Later, "there is no desktop session");
        return;
    }
    const QDBusConnection bus = connected();
    // Nobody would ever hear of a call without a connection.
    if (!bus.isConnected()) {
        answer(Arrival::Later, bus.lastError().message());
        return;
    }
    const QDBusMessage call = desktop_call(message_for(event, shown.value(key_of(event))));
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, PATIENCE_MS), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [=] {
        watcher->deleteLater();
        take_answer(*watcher, event, answer);
    });
}

void Desktop::take_answer(const QDBusPendingReply<uint>& reply, const Event& event,
                          const Answer& answer)
{
    if (reply.isError()) {
        answer(Arrival::Later, reply.error().message());
        return;
    }
    if (event.change == Change::Begins || event.change == Change::Lasts)
        shown.insert(key_of(event), reply.value());
    else
        shown.remove(key_of(event));
    answer(Arrival::Arrived, {});
}
}  // namespace

Way desktop_way(QObject* owner)
{
    auto* const desktop = new Desktop(owner);
    const auto send = [desktop](const Event& event, const Answer& answer) {
        desktop->send(event, answer);
    };
    return {"desktop", MOST_MESSAGES, send};
}
