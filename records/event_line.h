#pragma once

#include "records/condition.h"

#include <QDateTime>
#include <QString>

/** What a line of the event log tells. */
enum class EventKind
{
    Other,        ///< nothing that is known: the rest of a line that was cut, or garbage
    PhaseChange,  ///< "Switching to phase Done because max charge time reached"
    BotchedTest,  ///< a resistance test with a negative result
    Reset,        ///< of an instrument that has fallen silent
    Telemetry,    ///< what the instrument said, where the settings log it
    Command       ///< what it was told, "55 00 04", where the settings log it
};

/** The phases of a test as far as the event log tells them apart: both kinds of charging are one. */
enum class TestPhase
{
    Unknown,
    Charging,
    FullChargeTest,
    ReadyForDischarge,
    Discharging,
    ResistanceTest,
    ResistanceRecovery,
    FinalCharge,
    FinalChargeTest,
    Done
};

/** What is known of a phase beforehand. */
struct TestPhaseTraits
{
    TestPhase phase;
    const char* text;     ///< how the event log's words for it begin
    Condition condition;  ///< what a test in it is found at
    bool needs_rows;      ///< each line of the instrument gives a row, if a current flows
    bool is_step;         ///< over in seconds, if the instrument obeys
};

const TestPhaseTraits& traits_of(TestPhase phase);
/** "Ready for 2nd Discharge" is TestPhase::ReadyForDischarge. */
TestPhase phase_of(const QString& text);

/** A line of the event log, understood. */
struct EventLine
{
    EventKind kind = EventKind::Other;
    QDateTime time;  ///< local time without a zone, whole seconds; invalid if the line tells none
    QString phase;   ///< of a change, "Discharging"
    QString reason;  ///< of a change
};

EventLine read_event_line(const QString& line);
