#pragma once

#include <QObject>
#include <QStringList>

#include <functional>

/** A program to be run once, and for how long at most. */
struct ChildOrder
{
    QString program;
    QStringList arguments;
    QList<QByteArray> variables;  ///< "NAME=value", besides those of this process
    QByteArray input;
    int seconds = 60;
};

/** How it ended. */
struct ChildEnd
{
    bool started = false;
    bool in_time = false;
    int status = -1;   ///< exit status; -1 if a signal ended it
    QString sentence;  ///< "ended with status 1", "cannot be started: ..."
};

/**
 * Starts it and returns at once; `parent` owns what looks after it. Past its time it is ended with all that it has
 * started, first kindly, then by force.
 */
void run_child(const ChildOrder& order, QObject* parent,
               const std::function<void(const ChildEnd&)>& ended);
