#pragma once

#include "support/whole_test.h"

#include <QSet>
#include <QString>

/**
 * A test of one cycle that comes through every phase, and a fault that strikes in each: it is set
 * when the phase is new, and so meets the first line.
 *
 *     PhaseTour tour("garbage 1");
 *     QVERIFY(tour.run());
 *     QCOMPARE(tour.test.difference_from("unread_lines"), QString());
 */
class PhaseTour
{
public:
    /** `fault` in the simulator's words, with the number of the phase for a "%1" in it; may be empty. */
    explicit PhaseTour(const QString& fault_words = QString(),
                       const QSet<Phase>& phases = every_phase());

    static QSet<Phase> every_phase();

    /** From before Start to this phase, or on to it; false if the test does not come so far. */
    bool reach(Phase phase);
    /** From before Start, or from where it stands, to some time after Done. */
    bool run();

    WholeTest test;
    QSet<Phase> visited;

private:
    void begin();
    void move_on();
    void strike();

    QString fault;
    QSet<Phase> struck_phases;
    int prompt_seconds = 0;
    bool begun = false;
};
