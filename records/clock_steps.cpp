#include "records/clock_steps.h"

#include <algorithm>
#include <cmath>

namespace
{
constexpr double CUT = 1.1;    // seconds: times are cut to whole ones, rows to tenths
constexpr double DOUBT = 3.0;  // seconds, where two cut times are compared
constexpr double LONGEST_STEP =
    26.0 * 3600.0;  // seconds: from one end of the time zones to the other

const QString COMPLETED = "Completed IR Test, IR = ";

/** All zones are whole quarters of an hour apart. */
bool is_change_of_zone(double seconds)
{
    constexpr double QUARTER = 900.0;
    return std::fabs(seconds) > DOUBT && std::fabs(seconds) < LONGEST_STEP &&
           std::fabs(std::remainder(seconds, QUARTER)) <= DOUBT;
}

/** Local times as numbers: no jump of any zone is to count here. */
double seconds_between(const QDateTime& from, const QDateTime& to)
{
    return double(from.date().daysTo(to.date())) * 86400.0 +
           from.time().msecsTo(to.time()) / 1000.0;
}

/** The charge went over into the discharge on a line that left its own row behind. */
bool ends_charge_at_once(const PhaseChange& change)
{
    return change.phase == "Discharging" && (change.reason.startsWith("max charge time reached") ||
                                             change.reason.startsWith("charging voltage drop"));
}

bool is_completed_with(const PhaseChange& change, double milliohms)
{
    constexpr double HALF = 0.501;  // rows have whole milliohms
    return change.reason.startsWith(COMPLETED) &&
           std::fabs(change.reason.mid(COMPLETED.size()).toDouble() - milliohms) <= HALF;
}
}  // namespace

ClockSteps::ClockSteps(const EventLog& log) : events(log)
{
}

void ClockSteps::begin_section(const Section& section)
{
    found.clear();
    ahead = 0.0;
    next_change = events.change_at(section.start);
    const double step = step_before(section);
    if (step != 0.0)
        found.append({section.line, step});
}

/** Seconds between the last row of the section before and this head that cannot have gone by. */
double ClockSteps::step_before(const Section& section) const
{
    if (!has_previous || !previous.start.isValid() || !section.start.isValid())
        return 0.0;
    const double seconds =
        seconds_between(previous.start, section.start) - previous.count.last_seconds;
    if (seconds < -CUT)
        return seconds;
    const bool at_once = previous.kind == SectionKind::Charge && previous.count.rows > 0 &&
                         next_change >= 0 && ends_charge_at_once(events.changes[next_change]);
    return at_once && is_change_of_zone(seconds) ? seconds : 0.0;
}

void ClockSteps::take_resistance(const Section& section, const Row& row)
{
    if (next_change < 0)
        return;
    for (int i = next_change; i < events.changes.size(); ++i) {
        const PhaseChange& change = events.changes[i];
        const double off = seconds_between(section.start, change.time) - row.seconds;
        const bool changed = is_change_of_zone(off - ahead);
        if (!is_completed_with(change, row.milliohms) ||
            (!changed && std::fabs(off - ahead) > DOUBT))
            continue;
        if (changed) {
            found.append({row.line, off - ahead});
            ahead = off;
        }
        next_change = i + 1;
        return;
    }
}

void ClockSteps::end_section(Section& section)
{
    for (const ClockStep& step : qAsConst(found))
        section.count.add_step(step);
    QList<ClockStep>& steps = section.count.steps;
    std::stable_sort(steps.begin(), steps.end(), [](const ClockStep& left, const ClockStep& right) {
        return left.line < right.line;
    });
    previous = section;
    has_previous = true;
}
