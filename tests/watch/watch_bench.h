#pragma once

#include "support/whole_test.h"

#include "watch/watch.h"

#include <QTemporaryDir>

/** A watch of a folder, whose clocks the test moves on. */
class WatchedFolder
{
public:
    explicit WatchedFolder(const QString& folder);

    /** All that is found at a look so many seconds later: "charging instrument-silent". */
    QString look_after(double seconds);
    /** The same of one log alone, "Pack A_1042.csv". */
    QString look_at(const QString& log);
    /** Another watch takes the place of this one, which leaves what it has on disk. */
    void restart();
    const Situation* situation(Condition condition) const;

    Look seen;  ///< at the last look
    Moment now;
    WatchSettings settings;
    std::unique_ptr<Watch> watch;
    QTemporaryDir state;
};

/** A station of the engine with a simulated instrument, and a watch of its log folder. */
class WatchBench
{
public:
    WatchBench();

    /** Lets the test run on, with a look every other second; what the last one finds. */
    QString run(int seconds);
    /** Until the station has been in the phase for four seconds. */
    QString run_to(Phase phase);

    WholeTest test;
    WatchedFolder folder;
};
