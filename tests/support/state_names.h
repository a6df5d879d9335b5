#pragma once

#include "device/kestrometer_state.h"
#include "station/phase.h"

// What a failed comparison calls the two values; found beside the types, so in every test alike.

/** "PHASE_DISCHARGING", or "Phase(11)". To be freed by delete[]. */
char* toString(const Phase& phase);
/** "Charging". To be freed by delete[]. */
char* toString(const KestrometerState& state);
