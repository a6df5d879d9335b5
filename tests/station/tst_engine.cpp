#include "station/test_station.h"
#include "support/station_bench.h"

#include "device/kestrometer.h"

#include <QtTest>

/** What one telemetry line does to a test. */
class EngineTest : public QObject
{
    Q_OBJECT

private slots:
    void start_begins_the_first_charge();
};

void EngineTest::start_begins_the_first_charge()
{
    StationBench bench;
    bench.receive("41.50", "0.0", "O");
    bench.start();
    QCOMPARE(bench.station->phase, PHASE_CHARGING);
    bench.receive("41.52", "1.0", "C");
    QCOMPARE(bench.wire.commands(), QByteArray("C"));
    QCOMPARE(bench.csv(), QByteArray("Kestrometer Log\n"
                                     "Battery Name:  Pack A\n"
                                     "Serial Number: 1042\n"
                                     "Charge Number:               1\n"
                                     "Timestamp:                   2020-04-03 09:15:01\n"
                                     "Max Charge Time (h):         6\n"
                                     "Detect Full Charge:          No\n"
                                     "Low Voltage Cutoff (V):      19\n"
                                     "Prompt to Discharge:         No\n"
                                     "Final Charge (V):            0\n"
                                     "Measure Internal Resistance: Yes\n"
                                     "Software Version:            v1.0.0b1, Apr 03 2020\n"
                                     "IR Test Interval (Ah):       0.5\n"
                                     "Time (s),Voltage (V)\n"
                                     "1.0,41.52\n"));
    QCOMPARE(bench.txt(), QByteArray("2020-04-03 09:15:01 Switching to phase Charging because "
                                     "User clicked 'Start'.\n"));
    QVERIFY(bench.answers.seen.empty());
}

QTEST_MAIN(EngineTest)
#include "tst_engine.moc"
