#include "records/test_story.h"

namespace
{
constexpr qint64 STANDS_MS = 3000;
// A silent instrument is reset every five seconds; one of these lines may be left out.
constexpr qint64 LONGEST_RESET_INTERVAL_MS = 16000;

const QString COMPLETED = "Completed IR Test, IR = ";
}  // namespace

void TestStory::take(const EventLine& line, qint64 arrival_ms, const QDateTime& since)
{
    if (line.time.isValid())
        settle(line.time);
    switch (line.kind) {
    case EventKind::PhaseChange:
        take_change(line, arrival_ms, since);
        break;
    case EventKind::BotchedTest:
        ++botched_tests;
        break;
    case EventKind::Reset:
        if (arrival_ms - reset_ms > LONGEST_RESET_INTERVAL_MS)
            end_silence();
        first_reset_ms = resets == 0 ? arrival_ms : first_reset_ms;
        reset_ms = arrival_ms;
        ++resets;
        break;
    case EventKind::Telemetry:
        telemetry_ms = arrival_ms;
        has_telemetry = true;
        end_silence();
        break;
    case EventKind::Command:
    case EventKind::Other:
        break;
    }
}

void TestStory::take_change(const EventLine& line, qint64 arrival_ms, const QDateTime& since)
{
    const TestPhase phase = phase_of(line.phase);
    if (phase == TestPhase::Discharging && last.phase != TestPhase::ResistanceRecovery) {
        ++discharges;
        botched_tests = 0;
    }
    // A botched test tells of its result in the same way, with a negative figure.
    if (line.reason.startsWith(COMPLETED) && !line.reason.startsWith(COMPLETED + '-'))
        botched_tests = 0;
    // Whoever looked meanwhile was told that it counts, whatever the clock of the log says.
    if (last_stood || arrival_ms - last.arrival_ms >= STANDS_MS)
        settled = last;
    last = {phase, line.phase, line.reason, line.time, arrival_ms, since};
    if (empty)
        settled = last;
    last_stood = false;
    empty = false;
}

/** Whatever the event log tells three seconds later shows that a phase has stood so long. */
void TestStory::settle(const QDateTime& later)
{
    const qint64 stood_ms = last.time.msecsTo(later);
    // Backwards: the clock was set meanwhile, which takes longer than one line.
    last_stood = last_stood || stood_ms >= STANDS_MS || stood_ms < 0;
}

void TestStory::end_silence()
{
    resets = 0;
}

const StoryPhase& TestStory::phase(qint64 now_ms) const
{
    return last_stood || now_ms - last.arrival_ms >= STANDS_MS ? last : settled;
}

const StoryPhase& TestStory::last_phase() const
{
    return last;
}
