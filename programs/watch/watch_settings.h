#pragma once

#include "watch/watch.h"
#include "watch/watch_options.h"

/** What the watch has to know, from the command line and the application's settings; or an error. */
struct StartOfWatch
{
    WatchSettings settings;
    QString error;        ///< a sentence, where nothing can be followed
    QStringList missing;  ///< sentences about folders that are not there, or not yet
};

StartOfWatch start_of_watch(const WatchOptions& options);
