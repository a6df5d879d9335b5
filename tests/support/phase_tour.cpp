#include "support/phase_tour.h"

#include "station/test_station.h"

namespace
{
// Longer than any fault that ends by itself; nothing is logged in these phases.
constexpr int REST_SECONDS = 16;
constexpr int MOST_SECONDS = 400;

PackModel small_pack()
{
    PackModel pack = WholeTest::quick_pack();
    pack.capacity_ah = 0.02;
    return pack;
}
}  // namespace

PhaseTour::PhaseTour(const QString& fault_words, const QSet<Phase>& phases)
    : test(small_pack()), fault(fault_words), struck_phases(phases)
{
    TestStation& station = test.station;
    station.max_charge_time = 60;
    station.charge_test_interval = 3;
    station.detect_full_charge = true;
    station.prompt_to_discharge = true;
    station.internal_resistance_test_interval_ah = 0.01;
}

QSet<Phase> PhaseTour::every_phase()
{
    QSet<Phase> phases;
    for (int phase = PHASE_IDLE; phase <= PHASE_DONE; ++phase)
        phases.insert(Phase(phase));
    return phases;
}

void PhaseTour::begin()
{
    begun = true;
    strike();
    test.run(REST_SECONDS);
    test.start();
    test.level_off();
}

bool PhaseTour::reach(Phase phase)
{
    if (!begun)
        begin();
    for (int second = 0; second < MOST_SECONDS && test.station.phase != phase; ++second)
        move_on();
    return test.station.phase == phase;
}

bool PhaseTour::run()
{
    if (!reach(PHASE_DONE))
        return false;
    strike();
    test.run(REST_SECONDS);
    return test.station.phase == PHASE_DONE;
}

void PhaseTour::move_on()
{
    strike();
    test.run(1);
    if (test.station.phase == PHASE_READY_FOR_DISCHARGE && ++prompt_seconds > REST_SECONDS)
        test.press("pbStartSkip");
}

void PhaseTour::strike()
{
    const Phase phase = test.station.phase;
    if (visited.contains(phase))
        return;
    visited.insert(phase);
    if (!fault.isEmpty() && struck_phases.contains(phase))
        test.link.set_fault(QString(fault).replace("%1", QString::number(phase)));
}
