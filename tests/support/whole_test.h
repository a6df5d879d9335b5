#pragma once

#include "support/simulated_link.h"
#include "support/station_bench.h"

#include "station/phase.h"

#include <functional>

/**
 * A test from end to end: a station on its cable, the simulated instrument with its pack at the
 * other end, and the clock, which every second of run() moves on.
 *
 *     WholeTest test;
 *     test.start();
 *     QVERIFY(test.run_to(PHASE_DONE));
 *     QCOMPARE(test.difference_from("one_cycle"), QString());
 */
class WholeTest
{
public:
    /** The instrument, number 7, is told off as on being chosen, and has sent its first line. */
    explicit WholeTest(const PackModel& pack = quick_pack());

    /** Full or empty in about half a minute; full at first. */
    static PackModel quick_pack();

    /** Types the names and presses Start. */
    void start(const QString& name = "Pack A", const QString& serial_number = "1042");
    /** Seconds, each of them with what the instrument says in it and a tick of the blink timer. */
    void run(int seconds);
    /** Runs until the station is in this phase; false if it is not after `most` seconds. */
    bool run_to(Phase phase, int most = 2000);
    /** Presses a button of the panel; what it commands has arrived. */
    void press(const char* button);
    /** From now on ten minutes of a level voltage, that of a full pack, lie behind this charge. */
    void level_off();

    /**
     * Empty if the commands and both logs are those in tests/data/whole, and if the data log loads as
     * the test that wrote it; else what differs.
     */
    QString difference_from(const QString& name);

    int lines_per_second = 1;
    std::function<void(const char*)>
        on_event;  ///< told of "start", "tick", and each button pressed

    StationBench bench;
    TestStation& station;
    SimulatedLink link;

private:
    void tell(const char* event) const;

    bool blink_on = false;
};
