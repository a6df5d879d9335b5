#pragma once

#include "watch/tells/quiet_hours.h"

#include <QStringList>

/** Who is told, how, and when. */
struct TellSettings
{
    bool desktop = true;
    bool inhibits_sleep = true;
    QStringList commands;   ///< with their arguments, as a shell would split them
    QStringList addresses;  ///< for the local sendmail
    QStringList urls;       ///< http or https
    int run_seconds = 60;   ///< for a command
    int remind_minutes = 60;
    QuietHours quiet_hours;
};
