#pragma once

#include <QDBusMessage>
#include <QString>

/** What somebody at the desktop is to see. */
struct DesktopMessage
{
    QString headline;
    QString text;        ///< plain; shown as it is, whatever looks like markup in it
    bool stays = false;  ///< until somebody takes it away; else the desktop decides
    uint replaces = 0;   ///< the desktop's number of an earlier one that gives way; 0 for none
};

/** Without one the library would start a bus that nobody listens to. */
bool has_session_bus();

/** The call that shows it; its answer is the desktop's number. */
QDBusMessage desktop_call(const DesktopMessage& message);

/** The call that takes it away again. */
QDBusMessage desktop_close_call(uint number);
