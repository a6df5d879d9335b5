#pragma once

#include "watch/tells/event.h"

#include <QTemporaryDir>

/** A test of the pack "Pack A" 1042 in its second cycle, with figures, at 2026-11-22 02:14 UTC. */
Situation situation_of(Condition condition);

/** Found at 05:19, three hours and five minutes later, on the computer "bench". */
Event event_of_condition(Condition condition, Change change = Change::Begins);

/** A name that means harm wherever it is taken for more than a name. */
struct HostileName
{
    const char* what;
    QString name;
};
QList<HostileName> hostile_names();

/** An event whose pack has such a name. */
Event event_named(const QString& battery);
