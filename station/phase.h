#pragma once

#include "device/kestrometer_state.h"

/** The phases of a test, in the order of a regular cycle. PHASE_DONE stays the last: loops end there. */
enum Phase : int
{
    PHASE_IDLE = 0,
    PHASE_CHARGING,
    PHASE_CHARGING_LEVELED,     ///< charging on after the voltage has levelled off
    PHASE_FULL_CHARGE_TEST,     ///< charger off for a moment: does the pack hold its voltage?
    PHASE_READY_FOR_DISCHARGE,  ///< waiting for the operator
    PHASE_DISCHARGING,
    PHASE_IR_TEST,      ///< load off for a moment: how far does the voltage rise?
    PHASE_IR_RECOVERY,  ///< load on again until the voltage is back where it was
    PHASE_FINAL_CHARGE,
    PHASE_FINAL_CHARGE_TEST,
    PHASE_DONE
};

/** What the Start/Skip button becomes when a phase begins. */
enum class StartSkip
{
    Start,    ///< reads "Start"; usable with an instrument and an open log
    Skip,     ///< reads "Skip"; usable with an instrument
    Disabled  ///< greyed, with the text that it had
};

/** What a press of the Start/Skip button does. */
enum class Press
{
    Refused,       ///< the button is greyed
    Start,         ///< a new test begins, or a loaded one goes on
    Discharge,     ///< of the next cycle
    EndDischarge,  ///< on to the next charge, after the last cycle to the final one
    FinishTest,    ///< the test is done
    ExtendTest     ///< further cycles follow, if more are wanted now
};

/** What a telemetry line adds to the test during a phase. */
enum class Sample
{
    None,
    Charge,
    Discharge
};

/** What the panel shows where the current stands. */
enum class Readout
{
    Kept,  ///< whatever stood there last
    Current,
    ChargeTime
};

/** Stands where a phase leaves the instrument as it is; `Unknown` is never commanded. */
constexpr KestrometerState no_command = Unknown;

/** What is known of a phase beforehand. */
struct PhaseTraits
{
    Phase phase;
    const char* text;  ///< "%1" stands for the number of the cycle, as in "2nd"
    StartSkip button;
    Press press;
    KestrometerState command;
    Sample sample;
    Readout readout;
};

const PhaseTraits& traits_of(Phase phase);
