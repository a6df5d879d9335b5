#pragma once

#include "guard/serial_line.h"

#include <QDateTime>
#include <QStringList>

/** The folders in which the port library keeps its lock files, "LCK..ttyUSB0". */
QStringList lock_folders();

/**
 * The lines on which this process has left a lock file since `start`: those that it held when it was
 * killed, also the one that it had opened a moment before.
 */
QVector<SerialLine> lines_locked_by(pid_t process, const QDateTime& start,
                                    const SerialLines& present,
                                    const QStringList& folders = lock_folders());
