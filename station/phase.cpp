#include "station/phase.h"

namespace
{
// clang-format off
constexpr PhaseTraits PHASES[] = {
    // phase, text
    // button            press                command      sample             readout
    {PHASE_IDLE, "Configure Test",
     StartSkip::Start,    Press::Start,        Off,         Sample::None,      Readout::Kept},
    {PHASE_CHARGING, "Charging",
     StartSkip::Skip,     Press::Discharge,    Charging,    Sample::Charge,    Readout::ChargeTime},
    {PHASE_CHARGING_LEVELED, "Charging",
     StartSkip::Skip,     Press::Discharge,    Charging,    Sample::Charge,    Readout::ChargeTime},
    {PHASE_FULL_CHARGE_TEST, "Full Charge Test",
     StartSkip::Disabled, Press::Refused,      Off,         Sample::Charge,    Readout::Kept},
    {PHASE_READY_FOR_DISCHARGE, "Ready for %1 Discharge",
     StartSkip::Start,    Press::Discharge,    Off,         Sample::None,      Readout::Kept},
    {PHASE_DISCHARGING, "Discharging",
     StartSkip::Skip,     Press::EndDischarge, Discharging, Sample::Discharge, Readout::Current},
    {PHASE_IR_TEST, "IR Test",
     StartSkip::Disabled, Press::Refused,      Off,         Sample::Discharge, Readout::Current},
    {PHASE_IR_RECOVERY, "Recovering from IR Test",
     StartSkip::Disabled, Press::Refused,      Discharging, Sample::Discharge, Readout::Current},
    {PHASE_FINAL_CHARGE, "Charging (final)",
     StartSkip::Skip,     Press::FinishTest,   Charging,    Sample::Charge,    Readout::ChargeTime},
    {PHASE_FINAL_CHARGE_TEST, "Final Charge Test",
     StartSkip::Disabled, Press::Refused,      no_command,  Sample::Charge,    Readout::Kept},
    {PHASE_DONE, "Done",
     StartSkip::Start,    Press::ExtendTest,   Off,         Sample::None,      Readout::Kept},
};
// clang-format on

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
