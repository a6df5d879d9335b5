#pragma once

#include "support/whole_test.h"

#include <QFile>
#include <QSet>
#include <QString>

/**
 * What befalls a test, in the order in which it does: the literal rules can be played over it.
 *
 *     1585905302000 chunk 4B455354...       bytes come; "digits 64000000" stands for so many in front
 *     1585905302000 tick 010                the second is over: lost, stuck, not discharging shown
 *     1585905302000 start                   the operator presses Start, or a button by its name
 *
 * The first column is the time in milliseconds since 1970 UTC. The computer's clock is from now on that
 * of its zone, with the changes of summer time.
 */
class FaultCourse
{
public:
    FaultCourse(WholeTest& whole_test, const QString& path);

    QSet<QString> seen;  ///< texts of the panel's warnings

private:
    void note(const QByteArray& what);
    void note_chunk(const QByteArray& bytes);
    void note_event(const char* what);
    QByteArray shown_warnings();

    WholeTest& test;
    QFile file;
};
