#pragma once

#include <QString>

/** What a test, or the machine, is found at. Several may hold at a time. */
enum class Condition
{
    Charging,
    Discharging,
    TestingResistance,
    TestingCharge,
    WaitsForOperator,
    Done,
    InstrumentSilent,
    NoCurrent,
    StepDoesNotEnd,
    ResistanceTestsFail,
    ProgramGone,
    Ended,
    PerhapsEnded,
    DiskLow,
    DiskFull,
    ClockStepped,
    WokeFromSleep
};

/** What is known of a condition beforehand. */
struct ConditionTraits
{
    Condition condition;
    const char* key;   ///< "waits-for-operator": for programs, never changed
    const char* text;  ///< "waits for the operator": for people
    bool moment;       ///< it happened, and has no end that could be told
};

const ConditionTraits& traits_of(Condition condition);
