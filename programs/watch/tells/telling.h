#pragma once

#include "watch/situation.h"

/** What people are told of a condition, and when. */
struct Telling
{
    Condition condition;
    unsigned flags;
    const char* headline;  ///< behind the name of the pack or the computer
    const char* sentence;  ///< what it means, and what to do
    const char* over;      ///< the headline when it is over; empty if it happens once
};

enum TellingFlag : unsigned
{
    TOLD = 1U,      ///< people hear of it; the others are the ordinary course of a test
    URGENT = 2U,    ///< stays on the desktop until somebody takes it away
    AT_NIGHT = 4U,  ///< told in quiet hours as well
    MACHINE = 8U,   ///< of the computer, not of a test
    DATED = 16U,    ///< a later `since` is another one: its time stands in the log
};

const Telling& telling_of(Condition condition);
/** What the test was at counts, too: a test that was done is put away, another one ended early. */
const Telling& telling_of(const Situation& situation);
bool has(Condition condition, TellingFlag flag);
/** Whether it is told again while it holds, and when it is over. */
bool lasts(Condition condition);
/**
 * Whether what is told of one condition leaves nothing to be said of another one of the same place that
 * is over: of a program that is gone nobody wants to hear that its instrument is no longer silent.
 */
bool speaks_for(Condition holding, Condition over);
