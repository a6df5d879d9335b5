#pragma once

#include "guard/serial_line.h"

/** The serial lines that a program holds, as they were when somebody last could look. */
class Notes
{
public:
    /**
     * Takes over what the program holds now. Nothing open at all is the picture of a program that is
     * dying, and changes nothing: its lines are those that it held before.
     */
    void take(const OpenFiles& files, const QVector<SerialLine>& lines, const SerialLines& present);

    QVector<SerialLine> held;
    QVector<SerialLine> lost;  ///< pulled while the program held them, and not back since
};
