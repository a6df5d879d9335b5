#pragma once

#include <QByteArray>
#include <QChar>

/** The state of an instrument; all but Unknown can be reported as well as commanded. */
enum KestrometerState : int
{
    Off,
    Charging,
    Discharging,
    Unknown
};

/** State behind the letter of a telemetry line: 'O', 'C' or 'D'; Unknown for any other, "c" included. */
KestrometerState state_from_letter(QChar letter);

/** The byte that commands a state; empty for Unknown, which cannot be commanded. */
QByteArray command_for_state(KestrometerState state);
