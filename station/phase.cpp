#include "station/phase.h"

namespace
{
constexpr PhaseTraits PHASES[] = {
    // phase                    button               command      sample
    {PHASE_IDLE, StartSkip::Start, Off, Sample::None},
    {PHASE_CHARGING, StartSkip::Skip, Charging, Sample::Charge},
    {PHASE_CHARGING_LEVELED, StartSkip::Skip, Charging, Sample::Charge},
    {PHASE_FULL_CHARGE_TEST, StartSkip::Disabled, Off, Sample::Charge},
    {PHASE_READY_FOR_DISCHARGE, StartSkip::Start, Off, Sample::None},
    {PHASE_DISCHARGING, StartSkip::Skip, Discharging, Sample::Discharge},
    {PHASE_IR_TEST, StartSkip::Disabled, Off, Sample::Discharge},
    {PHASE_IR_RECOVERY, StartSkip::Disabled, Discharging, Sample::Discharge},
    {PHASE_FINAL_CHARGE, StartSkip::Skip, Charging, Sample::Charge},
    {PHASE_FINAL_CHARGE_TEST, StartSkip::Disabled, no_command, Sample::Charge},
    {PHASE_DONE, StartSkip::Start, Off, Sample::None},
};

constexpr bool rows_in_order()
{
    int row = 0;
    for (const PhaseTraits& traits : PHASES)
        if (traits.phase != row++)
            return false;
    return row == PHASE_DONE + 1;
}
static_assert(rows_in_order(), "PHASES is indexed by Phase");
}  // namespace

const PhaseTraits& traits_of(Phase phase)
{
    return PHASES[phase];
}
