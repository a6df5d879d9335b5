#pragma once

#include "records/event_line.h"

#include <QList>

/** Who writes the logs of a test, as far as the system tells. */
enum class Writer
{
    Unseen,     ///< nobody has them open, and nobody was seen to write them
    Previewer,  ///< a program has them open and has written no row and no phase since
    Running,    ///< a program has them open and has written since
    Closed,     ///< the program that wrote them has closed them, and lives
    Gone,       ///< the program that wrote them is no more
    Untold      ///< they grew, and the system tells of nobody: a network folder, or another user
};

/** What is known of a test at one moment. Times in seconds, during which the machine was awake. */
struct TestView
{
    Writer writer = Writer::Unseen;
    TestPhase phase = TestPhase::Unknown;
    double phase_seconds = 0.0;  ///< since the phase began
    double row_seconds = 0.0;    ///< since the last row, or since the phase began if that was later
    double line_seconds = 0.0;   ///< since anything was written into either log
    int botched_tests = 0;       ///< in a row
    int resets = 0;              ///< of the instrument in a row, with no sign of life in between
    double first_reset_seconds = 0.0;  ///< since the first of them
    double last_reset_seconds = 0.0;   ///< since the last of them
    double telemetry_seconds = -1.0;   ///< since a telemetry line was logged; -1 if none was
};

constexpr double LONGEST_STEP = 120.0;  ///< seconds, for what the instrument does at once
constexpr int BOTCHED_TESTS = 3;        ///< in a row: no accident any more

/**
 * What a test is found at: first what it does, then what is wrong with it. Nothing for a log that is
 * merely looked at.
 *
 * @param quiet_seconds without a row, where rows are due, that are too many
 */
QList<Condition> conditions_of(const TestView& view, double quiet_seconds);
