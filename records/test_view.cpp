#include "records/test_view.h"

namespace
{
// A silent instrument is reset every five seconds, the first time after five.
constexpr double RESET_INTERVAL = 5.0;
constexpr double LONGEST_RESET_INTERVAL = 16.0;

bool resets_go_on(const TestView& view)
{
    return view.resets > 0 && view.last_reset_seconds <= LONGEST_RESET_INTERVAL;
}

/** The resets alone tell it where no rows are due. */
bool told_by_resets(const TestView& view, double quiet_seconds)
{
    return resets_go_on(view) && view.first_reset_seconds + RESET_INTERVAL >= quiet_seconds;
}

bool telemetry_comes(const TestView& view, double quiet_seconds)
{
    return view.telemetry_seconds >= 0.0 && view.telemetry_seconds <= quiet_seconds;
}

/** Without a current a discharge writes no rows, however lively the instrument. */
bool no_current(const TestView& view, double quiet_seconds)
{
    return view.phase == TestPhase::Discharging && view.row_seconds > quiet_seconds &&
           (telemetry_comes(view, quiet_seconds) || !resets_go_on(view));
}

bool instrument_silent(const TestView& view, double quiet_seconds)
{
    if (view.phase == TestPhase::Done || no_current(view, quiet_seconds))
        return false;  // what has been tested may be unplugged
    if (!traits_of(view.phase).needs_rows)
        return told_by_resets(view, quiet_seconds);
    return view.row_seconds > quiet_seconds;
}

/** Nothing tells a program that is gone from one whose instrument is silent but the resets. */
bool perhaps_ended(const TestView& view, double quiet_seconds)
{
    return view.writer == Writer::Untold && traits_of(view.phase).needs_rows &&
           view.line_seconds > quiet_seconds;
}

bool in_discharge(TestPhase phase)
{
    return phase == TestPhase::Discharging || phase == TestPhase::ResistanceTest ||
           phase == TestPhase::ResistanceRecovery;
}

QList<Condition> conditions_of_running_test(const TestView& view, double quiet_seconds)
{
    if (view.phase == TestPhase::Unknown)
        return {};
    if (perhaps_ended(view, quiet_seconds))
        return {Condition::PerhapsEnded};
    QList<Condition> conditions = {traits_of(view.phase).condition};
    const bool silent = instrument_silent(view, quiet_seconds);
    if (silent)
        conditions << Condition::InstrumentSilent;
    if (no_current(view, quiet_seconds))
        conditions << Condition::NoCurrent;
    if (!silent && traits_of(view.phase).is_step && view.phase_seconds > LONGEST_STEP)
        conditions << Condition::StepDoesNotEnd;
    if (in_discharge(view.phase) && view.botched_tests >= BOTCHED_TESTS)
        conditions << Condition::ResistanceTestsFail;
    return conditions;
}
}  // namespace

QList<Condition> conditions_of(const TestView& view, double quiet_seconds)
{
    switch (view.writer) {
    case Writer::Unseen:
    case Writer::Previewer:
        return {};
    case Writer::Running:
    case Writer::Untold:
        return conditions_of_running_test(view, quiet_seconds);
    case Writer::Closed:
        return {Condition::Ended};
    case Writer::Gone:
        return {view.phase == TestPhase::Done ? Condition::Ended : Condition::ProgramGone};
    }
    return {};
}
