#include "mock_service.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QtTest>

namespace
{
constexpr int PATIENCE_MS = 60000;
const QString MOCK = "org.freedesktop.DBus.Mock";
}  // namespace

MockService::MockService(const QByteArray& bus_address, const QStringList& mock_arguments,
                         const QString& service_name, const QString& object_path)
    : name(service_name), path(object_path), connection("test of " + service_name)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", bus_address);
    environment.insert("DBUS_SYSTEM_BUS_ADDRESS", bus_address);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start("/usr/bin/python3", QStringList{"-m", "dbusmock", "--session"} + mock_arguments);
    const QDBusConnection bus = QDBusConnection::connectToBus(bus_address, connection);
    is_there = bus.isConnected() && QTest::qWaitFor(
                                        [&] {
                                            return bus.interface()->isServiceRegistered(name) ||
                                                   process.state() == QProcess::NotRunning;
                                        },
                                        PATIENCE_MS);
}

MockService::~MockService()
{
    process.terminate();
    process.waitForFinished(PATIENCE_MS);
    QDBusConnection::disconnectFromBus(connection);
}

bool MockService::runs() const
{
    return is_there && process.state() == QProcess::Running;
}

QList<QVariantList> MockService::calls(const QString& method) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(name, path, MOCK, "GetMethodCalls");
    call << method;
    const QDBusMessage answer = QDBusConnection(connection).call(call);
    QList<QVariantList> all;
    if (answer.type() != QDBusMessage::ReplyMessage)
        return all;
    const QDBusArgument list = answer.arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        qulonglong time = 0;
        QVariantList arguments;
        list.beginStructure();
        list >> time >> arguments;
        list.endStructure();
        all << arguments;
    }
    list.endArray();
    return all;
}

int MockService::rows(const QString& interface, const QString& method) const
{
    const QDBusMessage answer =
        QDBusConnection(connection)
            .call(QDBusMessage::createMethodCall(name, path, interface, method));
    if (answer.type() != QDBusMessage::ReplyMessage)
        return -1;
    const QDBusArgument list = answer.arguments().value(0).value<QDBusArgument>();
    int count = 0;
    list.beginArray();
    for (; !list.atEnd(); ++count) {
        list.beginStructure();
        while (!list.atEnd())
            list.asVariant();
        list.endStructure();
    }
    list.endArray();
    return count;
}

bool MockService::arrange(const QString& method, const QVariantList& arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(name, path, MOCK, method);
    call.setArguments(arguments);
    return QDBusConnection(connection).call(call).type() == QDBusMessage::ReplyMessage;
}
