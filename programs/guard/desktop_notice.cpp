#include "guard/desktop_notice.h"

#include "programs/common/desktop_message.h"

#include <QDBusConnection>
#include <QProcess>

#include <unistd.h>

namespace
{
constexpr int PATIENCE_S = 10;
const QString PROGRAM = "/proc/self/exe";  // also when its file has been replaced meanwhile
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
    DesktopMessage message;
    message.headline = headline;
    message.text = text;
    message.stays = true;
    const QDBusMessage answer =
        QDBusConnection::sessionBus().call(desktop_call(message), QDBus::Block, PATIENCE_S * 1000);
    return answer.type() == QDBusMessage::ReplyMessage ? 0 : 1;
}
