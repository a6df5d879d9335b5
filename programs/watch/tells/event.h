#pragma once

#include "watch/situation.h"

/** What became of a condition, which is what people are told. */
enum class Change
{
    Begins,
    Lasts,
    Over,
    Test  ///< no condition: whether a message arrives
};

struct Event
{
    qint64 number = 0;  ///< counts up; one number is one event, however often it arrives
    Change change = Change::Begins;
    Situation situation;  ///< as last seen
    QDateTime time;       ///< UTC, of the look that found it
    bool first = true;    ///< nobody was told of this condition before
    QString host;         ///< the computer
};

/** "begins", "lasts", "over", "test" */
QString change_key(Change change);
