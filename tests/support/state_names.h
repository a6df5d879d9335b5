#pragma once

#include <QMetaType>

// Declared and not included: what hardly any test knows of must not have all of them compiled anew.
enum KestrometerState : int;
enum Phase : int;

Q_DECLARE_METATYPE(KestrometerState)
Q_DECLARE_METATYPE(Phase)

// What a failed comparison calls the two values; found beside the types, so in every test alike.

/** "PHASE_DISCHARGING", or "Phase(11)". To be freed by delete[]. */
char* toString(const Phase& phase);
/** "Charging". To be freed by delete[]. */
char* toString(const KestrometerState& state);
