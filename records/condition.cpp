#include "records/condition.h"

namespace
{
constexpr ConditionTraits CONDITIONS[] = {
    // condition, key, text, moment
    {Condition::Charging, "charging", "charging", false},
    {Condition::Discharging, "discharging", "discharging", false},
    {Condition::TestingResistance, "testing-resistance", "testing the resistance", false},
    {Condition::TestingCharge, "testing-charge", "testing the charge", false},
    {Condition::WaitsForOperator, "waits-for-operator", "waits for the operator", false},
    {Condition::Done, "done", "done", false},
    {Condition::InstrumentSilent, "instrument-silent", "the instrument is silent", false},
    {Condition::NoCurrent, "no-current", "no current flows", false},
    {Condition::StepDoesNotEnd, "step-does-not-end", "a step does not end", false},
    {Condition::ResistanceTestsFail, "resistance-tests-fail", "resistance tests fail", false},
    {Condition::ProgramGone, "program-gone", "the program is gone", false},
    {Condition::Ended, "ended", "ended", true},
    {Condition::PerhapsEnded, "perhaps-ended", "perhaps ended", false},
    {Condition::DiskLow, "disk-low", "the disk is nearly full", false},
    {Condition::DiskFull, "disk-full", "the disk is full", false},
    {Condition::ClockStepped, "clock-stepped", "the clock was set", true},
    {Condition::WokeFromSleep, "woke-from-sleep", "the computer slept", true},
};

constexpr bool rows_in_order()
{
    int row = 0;
    for (const ConditionTraits& traits : CONDITIONS)
        if (int(traits.condition) != row++)
            return false;
    return row == int(Condition::WokeFromSleep) + 1;
}
static_assert(rows_in_order(), "CONDITIONS is indexed by Condition");
}  // namespace

const ConditionTraits& traits_of(Condition condition)
{
    return CONDITIONS[int(condition)];
}
