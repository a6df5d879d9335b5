#pragma once

#include "watch/tells/tell_settings.h"

#include <QStringList>

enum class WatchCommand
{
    Follow,
    Status,
    Check
};

/** The command line and kest-watch.conf as values. */
struct WatchOptions
{
    WatchCommand command = WatchCommand::Follow;
    QStringList folders;  ///< as given; none means the application's
    int quiet_seconds = 30;
    bool json = false;
    TellSettings telling;

    QString answer;  ///< to be printed in place of any work: help or version
    QString error;   ///< a sentence about wrong arguments
};

/** What a settings file says. Empty, or what is wrong, "line 2: ..."; what stood before is taken. */
QString take_settings(const QByteArray& content, WatchOptions& options);

/**
 * Settings of the file come first: where one thing is given twice, the command line's counts. Commands,
 * addresses and URLs add up; folders of the command line replace those of the file.
 */
WatchOptions read_watch_options(const QStringList& arguments, const QString& conf);
