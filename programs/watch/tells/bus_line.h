#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>

/**
 * Calls over a bus of the session or of the system, one after the other. They are made in a thread of
 * their own: where a bus says nothing the toolkit waits for ever, and nobody else is to wait with it.
 */
class BusLine : public QObject
{
public:
    using Done = std::function<void(const QDBusMessage& answer)>;

    explicit BusLine(QDBusConnection::BusType bus, QObject* parent = nullptr);
    ~BusLine() override;

    /** `done` is called with an answer or an error, in this thread, unless the line is gone before. */
    void call(const QDBusMessage& message, const Done& done);

    /** Whether a line has gone while its bus kept it waiting: the program's end would wait for that, too. */
    static bool any_is_stuck();

private:
    struct Caller;

    Caller* caller;  ///< owned, unless it is stuck: then it stays behind
};
