#pragma once

#include "watch/tells/event.h"
#include "watch/tells/quiet_hours.h"

#include <QList>

/** A condition that people are to know of, and what they know. */
struct Noted
{
    Situation situation;   ///< as last seen
    QDateTime told;        ///< UTC, last time; invalid if nobody was told
    QDateTime over;        ///< UTC, when it no longer held; invalid while it holds
    bool old = false;      ///< from before the watch's first day: nobody is to be told
    bool settled = false;  ///< that it is over was told
};

/** An event on one of its ways to people. */
struct Letter
{
    Event event;
    QString way;  ///< as "mail anna@example.org"
};

/** All that must not be forgotten when the watch ends, in whatever manner. */
struct Memory
{
    QDateTime born;  ///< UTC; invalid before the first look
    qint64 last_number = 0;
    QList<Noted> noted;
    QList<Letter> letters;  ///< not yet arrived, oldest first
};

/** When people want to be told. */
struct TellRules
{
    int remind_minutes = 60;  ///< 0 for never
    QuietHours quiet_hours;
    QString host;
};

/**
 * Works out from what holds now and from the memory what people are to be told, and remembers it.
 *
 * Told are only the conditions with TOLD. In quiet hours events wait in the memory; what both began and
 * ended in them is told afterwards as one event.
 *
 * @param situations all that hold now: what is missing is over
 * @param changed set if the memory is another one now than before
 */
QList<Event> take_look(Memory& memory, const QList<Situation>& situations, const QDateTime& now,
                       const TellRules& rules, bool& changed);
