#pragma once

#include "device/kestrometer_state.h"

#include <QDateTime>
#include <QString>
#include <QVector>

/** What became of a line that was to be switched off. */
enum class Fate
{
    Off,
    Silent,         ///< no byte for a minute
    NotUnderstood,  ///< no valid line for a minute
    Gone,           ///< no longer there
    Changed,        ///< another device has its name
    Held,           ///< by another process
    Refused,        ///< by the system
    Vanished,       ///< while it was being switched off
    Lost,           ///< pulled before the program ended
    Left,           ///< the operator did not want to wait
    Unheard,        ///< no instrument speaks there, and so it was told nothing
    InUse,          ///< not free, where only free ones were asked for
    NoPort,         ///< nothing of that name is a serial port
};

/** One line and what became of it. */
struct Outcome
{
    bool is_good() const;

    QString line;  ///< "ttyUSB0"
    Fate fate = Fate::Lost;
    QString detail;  ///< who holds it, why it is refused
    int id = -1;     ///< number of the instrument; -1 if it was not heard
    KestrometerState first_state = Unknown;
    KestrometerState last_state = Unknown;
    double voltage = 0.0;
    double current = 0.0;
    int resets = 0;
    QDateTime time;  ///< local
};
