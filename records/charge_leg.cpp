#include "records/charge_leg.h"

namespace
{
bool begins_leg(RoadPhase before, RoadPhase now)
{
    return now == RoadPhase::Charging ||
           (now == RoadPhase::FinalCharge && before != RoadPhase::FinalChargeTest);
}

bool is_charge(RoadPhase phase)
{
    switch (phase) {
    case RoadPhase::Charging:
    case RoadPhase::ChargingLeveled:
    case RoadPhase::FullChargeTest:
    case RoadPhase::FinalCharge:
    case RoadPhase::FinalChargeTest:
        return true;
    case RoadPhase::Unknown:
    case RoadPhase::Ready:
    case RoadPhase::Discharging:
    case RoadPhase::IrTest:
    case RoadPhase::IrRecovery:
    case RoadPhase::Done:
        break;
    }
    return false;
}
}  // namespace

QList<ChargeLeg> charge_legs(const QList<PhaseChange>& changes)
{
    QList<ChargeLeg> legs;
    PhaseRoad road;
    bool charging = false;
    for (const PhaseChange& change : changes) {
        const RoadPhase before = road.now();
        road.take(change);
        const bool begins = begins_leg(before, road.now());
        const bool ends = charging && !begins && !is_charge(road.now());
        if (ends) {
            legs.last().end = change.time;
            legs.last().time_ended = change.reason.startsWith("max charge time reached");
        }
        if (begins)
            legs.append({change.time, QDateTime(), false});
        charging = begins || (charging && !ends);
    }
    return legs;
}
