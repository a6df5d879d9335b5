#pragma once

#include "watch/situation.h"

#include <QList>

/** What a look at all folders and at the machine has found. */
struct Look
{
    QList<Situation> situations;  ///< those of one log behind each other
    bool test_runs = false;       ///< any, also one that waits; not one that is done
};
