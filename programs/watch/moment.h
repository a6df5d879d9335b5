#pragma once

#include <QDateTime>

/** A moment by the three clocks of the machine. */
struct Moment
{
    QDateTime time;        ///< UTC; steps when somebody sets the clock
    qint64 awake_ms = 0;   ///< never steps, and stands still while the machine sleeps
    qint64 passed_ms = 0;  ///< never steps, and runs on while it sleeps
};

Moment present_moment();
