#pragma once

#include <QStringList>

enum class WatchCommand
{
    Follow,
    Status
};

/** The command line as values. */
struct WatchOptions
{
    WatchCommand command = WatchCommand::Follow;
    QStringList folders;  ///< as given; none means the application's
    int quiet_seconds = 30;
    bool json = false;

    QString answer;  ///< to be printed in place of any work: help or version
    QString error;   ///< a sentence about wrong arguments
};

WatchOptions read_watch_options(const QStringList& arguments);
