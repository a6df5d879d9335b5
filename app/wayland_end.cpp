#include "app/wayland_end.h"

#include "device/off_at_exit.h"

#include <QString>

namespace
{
QtMessageHandler before = nullptr;

void listen(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    // Its last words, "broke" or "experienced a fatal error"; no other way is left to notice.
    if (text.startsWith("The Wayland connection "))
        command_all_off();
    before(type, context, text);
}
}  // namespace

void command_off_at_the_end_of_wayland()
{
    before = qInstallMessageHandler(listen);
}
