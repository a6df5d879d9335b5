#include "programs/common/desktop_message.h"
#include "watch/tells/bus_line.h"
#include "watch/tells/event_text.h"
#include "watch/tells/telling.h"
#include "watch/tells/ways.h"

#include <QDBusReply>
#include <QHash>
#include <QMap>

namespace
{
constexpr int MOST_MESSAGES = 20;  // whoever comes to the desktop is not to be buried

/** The desktop's end of the session's bus. What it shows of a condition is replaced by what follows. */
class Desktop : public QObject
{
public:
    explicit Desktop(QObject* owner) : QObject(owner), session(QDBusConnection::SessionBus)
    {
    }
    void send(const Event& event, const Answer& answer);

private:
    void take_answer(const QDBusReply<uint>& reply, const Event& event, const Answer& answer);
    void close_what_it_speaks_for(const Event& event);

    BusLine session;
    QHash<QByteArray, QMap<Condition, uint>> shown;  ///< the desktop's numbers, by log
};

bool holds(const Event& event)
{
    return event.change == Change::Begins || event.change == Change::Lasts;
}

DesktopMessage message_for(const Event& event, uint replaces)
{
    DesktopMessage message;
    message.headline = title_of(event);
    message.text = message_of(event);
    message.stays = holds(event) && has(event.situation.condition, URGENT);
    message.replaces = replaces;
    return message;
}

void Desktop::send(const Event& event, const Answer& answer)
{
    if (!has_session_bus()) {
        answer(Arrival::Later, "there is no desktop session");
        return;
    }
    const Situation& situation = event.situation;
    const uint replaces = shown.value(situation.log).value(situation.condition);
    session.call(desktop_call(message_for(event, replaces)),
                 [=](const QDBusMessage& reply) { take_answer(reply, event, answer); });
}

void Desktop::take_answer(const QDBusReply<uint>& reply, const Event& event, const Answer& answer)
{
    if (!reply.isValid()) {
        answer(Arrival::Later, reply.error().message());
        return;
    }
    close_what_it_speaks_for(event);
    QMap<Condition, uint>& of_log = shown[event.situation.log];
    if (holds(event))
        of_log.insert(event.situation.condition, reply.value());
    else
        of_log.remove(event.situation.condition);
    if (of_log.isEmpty())
        shown.remove(event.situation.log);
    answer(Arrival::Arrived, {});
}

/** Nobody tells that these are over, and some stay until somebody takes them away. */
void Desktop::close_what_it_speaks_for(const Event& event)
{
    if (!holds(event))
        return;
    QMap<Condition, uint>& of_log = shown[event.situation.log];
    for (auto other = of_log.begin(); other != of_log.end();) {
        if (!speaks_for(event.situation.condition, other.key())) {
            ++other;
            continue;
        }
        session.call(desktop_close_call(other.value()), [](const QDBusMessage&) {});
        other = of_log.erase(other);
    }
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
