#pragma once

#include "watch/look.h"
#include "watch/moment.h"

#include <QStringList>

/** What the watch has to know before its first look. */
struct WatchSettings
{
    QStringList folders;     ///< absolute
    int quiet_seconds = 30;  ///< without a row, where rows are due: the instrument is silent
};

/** Follows the logs of some folders. Reads only. */
class Watch
{
public:
    explicit Watch(const WatchSettings& watch_settings);

    /** To be called every few seconds. */
    Look look(const Moment& moment);

private:
    WatchSettings settings;
};
