#include "programs/common/desktop_message.h"

#include <QFile>
#include <QVariantMap>

bool has_session_bus()
{
    const QByteArray runtime_folder = qgetenv("XDG_RUNTIME_DIR");
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
           (!runtime_folder.isEmpty() && QFile::exists(QFile::decodeName(runtime_folder + "/bus")));
}

namespace
{
QDBusMessage call_of(const QString& method)
{
    return QDBusMessage::createMethodCall("org.freedesktop.Notifications",
                                          "/org/freedesktop/Notifications",
                                          "org.freedesktop.Notifications", method);
}
}  // namespace

QDBusMessage desktop_close_call(uint number)
{
    QDBusMessage call = call_of("CloseNotification");
    call << number;
    return call;
}

QDBusMessage desktop_call(const DesktopMessage& message)
{
    constexpr uchar NORMAL = 1;
    constexpr uchar CRITICAL = 2;
    constexpr int AS_THE_DESKTOP_LIKES = -1;
    constexpr int NEVER_EXPIRES = 0;
    const QVariantMap hints = {{"urgency", QVariant::fromValue(message.stays ? CRITICAL : NORMAL)}};
    QDBusMessage call = call_of("Notify");
    call << QString("Kest Battery Tester") << message.replaces << QString("kest-battery-tester")
         << message.headline << message.text.toHtmlEscaped() << QStringList() << hints
         << (message.stays ? NEVER_EXPIRES : AS_THE_DESKTOP_LIKES);
    return call;
}
