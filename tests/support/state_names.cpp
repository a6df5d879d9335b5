#include "support/state_names.h"

#include "device/kestrometer_state.h"
#include "station/phase.h"

#include <QtTest>

namespace
{
constexpr const char* PHASE_NAMES[] = {
    "PHASE_IDLE",
    "PHASE_CHARGING",
    "PHASE_CHARGING_LEVELED",
    "PHASE_FULL_CHARGE_TEST",
    "PHASE_READY_FOR_DISCHARGE",
    "PHASE_DISCHARGING",
    "PHASE_IR_TEST",
    "PHASE_IR_RECOVERY",
    "PHASE_FINAL_CHARGE",
    "PHASE_FINAL_CHARGE_TEST",
    "PHASE_DONE",
};
static_assert(std::size(PHASE_NAMES) == PHASE_DONE + 1, "one name for each phase");

constexpr const char* STATE_NAMES[] = {"Off", "Charging", "Discharging", "Unknown"};
static_assert(std::size(STATE_NAMES) == Unknown + 1, "one name for each state");

template <int count> char* name_of(const char* const (&names)[count], int value, const char* type)
{
    if (value >= 0 && value < count)
        return qstrdup(names[value]);
    return qstrdup(QByteArray(type).append("(").append(QByteArray::number(value)).append(")"));
}
}  // namespace

char* toString(const Phase& phase)
{
    return name_of(PHASE_NAMES, phase, "Phase");
}

char* toString(const KestrometerState& state)
{
    return name_of(STATE_NAMES, state, "KestrometerState");
}
