#include "watch/tells/memory.h"

#include "watch/tells/telling.h"

#include <algorithm>
#include <optional>

namespace
{
constexpr qint64 OLD_MOMENT_S = 3600;      // what happened once, before the very first look
constexpr qint64 OLD_CONDITION_S = 86400;  // what holds since

/** Whether what is seen is another one than what is known, though its kind and place are the same. */
bool is_another(const Situation& known, const Situation& seen)
{
    // The clock itself may have been put back between two of them.
    if (has(known.condition, MACHINE))
        return known.since != seen.since;
    // A log has its times in seconds, and after a restart they are all that is known.
    constexpr qint64 TOLERANCE_S = 60;
    return known.since.secsTo(seen.since) > TOLERANCE_S;
}

bool is_same(const Situation& known, const Situation& seen)
{
    return known.condition == seen.condition && known.log == seen.log &&
           (!has(known.condition, DATED) || !is_another(known, seen));
}

bool is_old(const Situation& situation, const QDateTime& born)
{
    const qint64 patience = lasts(situation.condition) ? OLD_CONDITION_S : OLD_MOMENT_S;
    return situation.since.isValid() && situation.since.secsTo(born) > patience;
}

/** Keeps the first `since`: a later look may know it less well. */
void see_again(Noted& noted, const Situation& situation)
{
    const QDateTime since = noted.situation.since;
    noted.situation = situation;
    noted.situation.since = since;
}

bool has_spokesman(const Noted& noted, const QList<Situation>& situations)
{
    return std::any_of(situations.begin(), situations.end(), [&noted](const Situation& holding) {
        return holding.log == noted.situation.log &&
               speaks_for(holding.condition, noted.situation.condition);
    });
}

/** Marks what is over and what holds again. True if either happened. */
bool compare(Memory& memory, const QList<Situation>& situations, const QDateTime& now)
{
    bool changed = false;
    for (Noted& noted : memory.noted) {
        const auto found =
            std::find_if(situations.begin(), situations.end(), [&](const Situation& situation) {
                return is_same(noted.situation, situation);
            });
        const bool holds = found != situations.end();
        if (holds)
            see_again(noted, *found);
        else if (has_spokesman(noted, situations))
            noted.settled = true;
        if (holds != noted.over.isValid())
            continue;
        noted.over = holds ? QDateTime() : now;
        changed = true;
    }
    return changed;
}

/** Takes up what was not there before. True if there was anything. */
bool take_up(Memory& memory, const QList<Situation>& situations)
{
    const int before = memory.noted.size();
    for (const Situation& situation : situations) {
        const bool known =
            std::any_of(memory.noted.begin(), memory.noted.end(),
                        [&](const Noted& noted) { return is_same(noted.situation, situation); });
        if (has(situation.condition, TOLD) && !known)
            memory.noted << Noted{situation, {}, {}, is_old(situation, memory.born)};
    }
    return memory.noted.size() != before;
}

bool reminder_due(const Noted& noted, const QDateTime& now, const TellRules& rules)
{
    if (rules.remind_minutes == 0 || !lasts(noted.situation.condition))
        return false;
    const qint64 passed = noted.told.secsTo(now);
    // A clock that was put back must not silence the reminders until it is where it was.
    return passed >= rules.remind_minutes * 60LL || passed < 0;
}

/** What is to be told of it now, if anything. */
std::optional<Change> due(const Noted& noted, const QDateTime& now, const TellRules& rules)
{
    const Condition condition = noted.situation.condition;
    const bool held_back =
        !has(condition, AT_NIGHT) && rules.quiet_hours.hold(now.toLocalTime().time());
    if (noted.old || noted.settled || held_back)
        return {};
    if (noted.over.isValid() && lasts(condition))
        return Change::Over;
    if (!noted.told.isValid())
        return Change::Begins;
    if (!noted.over.isValid() && reminder_due(noted, now, rules))
        return Change::Lasts;
    return {};
}

/** Whether there is nothing more to come of it. */
bool is_finished(const Noted& noted)
{
    const bool once = !lasts(noted.situation.condition);
    return noted.over.isValid() && (noted.old || noted.settled || (once && noted.told.isValid()));
}

Event tell(Noted& noted, Change change, Memory& memory, const QDateTime& now, const QString& host)
{
    Event event;
    event.number = ++memory.last_number;
    event.change = change;
    event.situation = noted.situation;
    // An event that waited for the morning tells when it happened.
    event.time = change == Change::Over ? noted.over : now;
    event.first = !noted.told.isValid();
    event.host = host;
    noted.told = now;
    noted.settled = change == Change::Over;
    return event;
}
}  // namespace

QList<Event> take_look(Memory& memory, const QList<Situation>& situations, const QDateTime& now,
                       const TellRules& rules, bool& changed)
{
    const bool first_look = !memory.born.isValid();
    if (first_look)
        memory.born = now;
    const bool over = compare(memory, situations, now);
    const bool more = take_up(memory, situations);
    QList<Event> events;
    for (Noted& noted : memory.noted)
        if (const std::optional<Change> change = due(noted, now, rules))
            events << tell(noted, *change, memory, now, rules.host);
    memory.noted.erase(std::remove_if(memory.noted.begin(), memory.noted.end(), is_finished),
                       memory.noted.end());
    changed = first_look || over || more || !events.isEmpty();
    return events;
}
