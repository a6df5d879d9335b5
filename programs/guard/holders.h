#pragma once

#include "guard/serial_line.h"

#include <QMap>

/** Which of these lines other processes have open, and who: "screen (process 4711)", by path. */
QMap<QString, QString> other_holders(const QVector<SerialLine>& lines, const SystemRoots& roots);
