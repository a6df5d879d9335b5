#include "support/test_road.h"

#include "station/test_station.h"

#include <QCheckBox>
#include <QSpinBox>
#include <QtTest>

namespace
{
/** Charged, skipped, discharged and charged again, as often as wanted; ends in a charge. */
void run_to_charge(StationBench& bench, int discharges_before)
{
    bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(discharges_before + 1);
    bench.receive("41.50", "0.0", "O");
    bench.start();
    bench.receive("41.50", "0.0", "C");
    for (int done = 0; done < discharges_before; ++done) {
        bench.press("pbStartSkip");
        bench.receive("40.00", "10.0", "D");
        bench.press("pbStartSkip");
        bench.receive("41.50", "0.0", "C");
    }
}

/** Ten minutes of a level voltage, all but the last sample of them put straight into the series. */
void level_off(StationBench& bench)
{
    bench.station->detect_full_charge = true;
    Series& series = bench.station->charge_voltage_series;
    while (series.points.size() < 599)
        series.add(series.points.size() + 1, 41.5);
    bench.receive("41.50", "0.0", "C");
}

void ready_for_discharge(StationBench& bench)
{
    bench.widget<QCheckBox>("cbPromptToDischarge")->setChecked(true);
    bench.receive_after(bench.station->max_charge_time, "41.50", "0.0", "C");
}

void discharge(StationBench& bench)
{
    bench.press("pbStartSkip");
    bench.receive("40.00", "10.0", "D");
}

void discharge_to_the_resistance_test(StationBench& bench)
{
    discharge(bench);
    bench.receive_after(180.0, "40.00", "10.0", "D");
}

void finish_the_resistance_test(StationBench& bench)
{
    discharge_to_the_resistance_test(bench);
    bench.receive("41.00", "0.0", "O");
}

void charge_finally(StationBench& bench)
{
    discharge(bench);
    bench.press("pbStartSkip");
    bench.receive("41.00", "0.0", "C");
}

void go_on_from_charge(StationBench& bench, Phase phase)
{
    switch (phase) {
    case PHASE_IDLE:
    case PHASE_CHARGING:
        break;
    case PHASE_CHARGING_LEVELED:
        level_off(bench);
        break;
    case PHASE_FULL_CHARGE_TEST:
        level_off(bench);
        bench.receive_after(301.0, "41.50", "0.0", "C");
        break;
    case PHASE_READY_FOR_DISCHARGE:
        ready_for_discharge(bench);
        break;
    case PHASE_DISCHARGING:
        discharge(bench);
        break;
    case PHASE_IR_TEST:
        discharge_to_the_resistance_test(bench);
        break;
    case PHASE_IR_RECOVERY:
        finish_the_resistance_test(bench);
        break;
    case PHASE_FINAL_CHARGE:
        charge_finally(bench);
        break;
    case PHASE_FINAL_CHARGE_TEST:
        charge_finally(bench);
        bench.receive_after(301.0, "41.00", "0.0", "C");
        break;
    case PHASE_DONE:
        charge_finally(bench);
        bench.press("pbStartSkip");
        break;
    }
}
}  // namespace

void bring_to(StationBench& bench, Phase phase, int discharges_before)
{
    if (phase != PHASE_IDLE)
        run_to_charge(bench, discharges_before);
    go_on_from_charge(bench, phase);
    if (bench.station->phase != phase)
        qFatal("The road to phase %d ended in phase %d.", int(phase), int(bench.station->phase));
}

void add_all_phases()
{
    QTest::addColumn<int>("phase");
    for (int phase = PHASE_IDLE; phase <= PHASE_DONE; ++phase)
        QTest::addRow("phase %d", phase) << phase;
}

TestCycle* add_cycle(TestStation& station)
{
    auto* cycle = new TestCycle;
    station.cycles.append(cycle);
    station.current_cycle = cycle;
    return cycle;
}

QString in_milliohms(const char* number)
{
    return QString("%1 m%2").arg(number).arg(QChar(0x2126));
}

QStringList events(StationBench& bench)
{
    const int stamp = QString("2020-04-03 09:15:00 ").size();
    QStringList texts;
    for (const QString& line : QString::fromUtf8(bench.txt()).split('\n', Qt::SkipEmptyParts))
        texts += line.mid(stamp);
    return texts;
}

QStringList last_rows(StationBench& bench)
{
    QStringList rows;
    for (const QString& line : QString::fromUtf8(bench.csv()).split('\n', Qt::SkipEmptyParts)) {
        if (line.startsWith("Time (s),"))
            rows.clear();
        else
            rows += line;
    }
    return rows;
}
