#pragma once

#include <QString>

/**
 * Shows a notice that stays on the desktop until somebody takes it away. It is sent by a process of its
 * own: a desktop that does not answer holds nobody up.
 */
void start_desktop_notice(const QString& headline, const QString& text);

/** What that process does; its exit status. */
int send_desktop_notice(const QString& headline, const QString& text);

/** Its first argument. */
constexpr const char* DESKTOP_NOTICE_OPTION = "--show-notice";
