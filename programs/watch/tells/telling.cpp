#include "watch/tells/telling.h"

#include "records/event_line.h"

#include <algorithm>

namespace
{
constexpr unsigned TROUBLE = TOLD | URGENT | AT_NIGHT;

// clang-format off
constexpr Telling TELLINGS[] = {
    {Condition::Charging, 0, "is charging", "", ""},
    {Condition::Discharging, 0, "is discharging", "", ""},
    {Condition::TestingResistance, 0, "its resistance is tested", "", ""},
    {Condition::TestingCharge, 0, "its charge is tested", "", ""},
    {Condition::WaitsForOperator, TOLD | URGENT | DATED,
     "waits for you",
     "The test goes on when somebody presses the button of its station.",
     "no longer waits"},
    {Condition::Done, TOLD | DATED,
     "is done",
     "The test has come to its end. The pack may be taken off.",
     "goes on after it was done"},
    {Condition::InstrumentSilent, TROUBLE,
     "the instrument is silent",
     "No reading comes in, and an instrument keeps its last command: nobody ends what it does now. "
     "Look at its cable and its supply; if it stays silent, take the pack off.",
     "the instrument speaks again"},
    {Condition::NoCurrent, TROUBLE,
     "no current flows",
     "The pack is to be discharged and readings come, but none with a current. "
     "Look at the load, its fuse and the clamps.",
     "no longer without current"},
    {Condition::StepDoesNotEnd, TROUBLE,
     "a step does not end",
     "A step that takes seconds has lasted for minutes. Look at the station and its instrument.",
     "the step has ended"},
    {Condition::ResistanceTestsFail, TROUBLE,
     "resistance tests fail",
     "Several in a row gave no value. Look at the clamps and the cables of the pack.",
     "resistance tests no longer fail"},
    {Condition::ProgramGone, TROUBLE,
     "the program is gone",
     "The program that wrote this log has ended, and the test was not done. "
     "The instrument keeps its last command: switch it off by hand.",
     "has been seen to"},
    {Condition::Ended, TOLD | DATED,
     "was ended before it was done",
     "Somebody ended the test at the computer: by a new test, by closing it, or by loading a log.",
     ""},
    {Condition::PerhapsEnded, TOLD,
     "has perhaps ended",
     "Nothing is written any more. Whether a program still holds the log cannot be seen from "
     "this computer.",
     "is written again"},
    {Condition::DiskLow, TROUBLE | MACHINE,
     "little room is left on the disk",
     "The tests go on when it is full, but what they write is lost. Make room.",
     "there is room on the disk again"},
    {Condition::DiskFull, TROUBLE | MACHINE,
     "the disk is full",
     "What the tests write now is lost. Make room at once.",
     "the disk is no longer full"},
    {Condition::ClockStepped, TOLD | MACHINE | DATED,
     "the clock was set",
     "Times in the logs do not fit together before and after, and time limits of a running test "
     "may have moved.",
     ""},
    {Condition::WokeFromSleep, TOLD | MACHINE | DATED,
     "the computer was asleep",
     "Nothing was recorded meanwhile, and nobody ended a charge or a discharge. "
     "Look at the packs.",
     ""},
};

constexpr Telling PUT_AWAY =
    {Condition::Ended, TOLD | DATED,
     "was done and has been put away",
     "Somebody has closed the finished test at the computer: by a new test, by closing it, or by "
     "loading a log.",
     ""};
// clang-format on

/** Beside the end of a test, which speaks for all that was up with it. */
struct Spokesman
{
    Condition holding;
    Condition over;
};
constexpr Spokesman SPOKESMEN[] = {
    {Condition::InstrumentSilent, Condition::NoCurrent},
    {Condition::InstrumentSilent, Condition::StepDoesNotEnd},
    {Condition::DiskFull, Condition::DiskLow},
};

constexpr Condition ENDS[] = {Condition::ProgramGone, Condition::Ended, Condition::PerhapsEnded};

bool is_end(Condition condition)
{
    return std::find(std::begin(ENDS), std::end(ENDS), condition) != std::end(ENDS);
}

constexpr bool rows_in_order()
{
    int row = 0;
    for (const Telling& telling : TELLINGS)
        if (int(telling.condition) != row++)
            return false;
    return row == int(Condition::WokeFromSleep) + 1;
}
static_assert(rows_in_order(), "TELLINGS is indexed by Condition");
}  // namespace

const Telling& telling_of(Condition condition)
{
    return TELLINGS[int(condition)];
}

const Telling& telling_of(const Situation& situation)
{
    const bool was_done = phase_of(situation.facts.phase) == TestPhase::Done;
    return situation.condition == Condition::Ended && was_done ? PUT_AWAY
                                                               : telling_of(situation.condition);
}

bool has(Condition condition, TellingFlag flag)
{
    return (telling_of(condition).flags & flag) != 0;
}

bool lasts(Condition condition)
{
    return !traits_of(condition).moment;
}

bool speaks_for(Condition holding, Condition over)
{
    if (is_end(holding))
        return !is_end(over) && !has(over, MACHINE);
    return std::any_of(std::begin(SPOKESMEN), std::end(SPOKESMEN), [=](const Spokesman& row) {
        return row.holding == holding && row.over == over;
    });
}
