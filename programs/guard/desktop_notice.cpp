#include "guard/desktop_notice.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QVariantMap>

#include <unistd.h>

namespace
{
constexpr int PATIENCE_S = 10;
const QString PROGRAM = "/proc/self/exe";  // also when its file has been replaced meanwhile

/** Without one the library would start a bus that nobody listens to. */
bool has_session_bus()
{
    const QByteArray runtime_folder = qgetenv("XDG_RUNTIME_DIR");
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
           (!runtime_folder.isEmpty() && QFile::exists(QFile::decodeName(runtime_folder + "/bus")));
}
}  // namespace

void start_desktop_notice(const QString& headline, const QString& text)
{
    if (has_session_bus())
        QProcess::startDetached(PROGRAM, {DESKTOP_NOTICE_OPTION, headline, text});
}

int send_desktop_notice(const QString& headline, const QString& text)
{
    // Ends the process if the bus takes us in and then says nothing.
    ::alarm(PATIENCE_S);
    QDBusMessage notice = QDBusMessage::createMethodCall("org.freedesktop.Notifications",
                                                         "/org/freedesktop/Notifications",
                                                         "org.freedesktop.Notifications", "Notify");
    const QVariantMap hints = {{"urgency", QVariant::fromValue(uchar(2))}};
    const int until_taken_away = 0;
    notice << QString("Kest Battery Tester") << 0U << QString("kest-battery-tester") << headline
           << text.toHtmlEscaped() << QStringList() << hints << until_taken_away;
    const QDBusMessage answer =
        QDBusConnection::sessionBus().call(notice, QDBus::Block, PATIENCE_S * 1000);
    return answer.type() == QDBusMessage::ReplyMessage ? 0 : 1;
}
