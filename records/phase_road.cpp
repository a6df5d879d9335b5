#include "records/phase_road.h"

#include <algorithm>

namespace
{
constexpr int MOST_LEFT = 100;

constexpr unsigned bit(RoadPhase phase)
{
    return 1u << unsigned(phase);
}

template <typename... Phases> constexpr unsigned any_of(Phases... phases)
{
    return (bit(phases) | ...);
}

constexpr unsigned ANY = ~0u;

/** A way into a phase: its name and its reason, as far as both are the same every time. */
struct Way
{
    const char* phase;
    const char* reason;
    unsigned from;
    RoadPhase to;
};

using P = RoadPhase;

// Where two checks meet on one line, the second change comes from the phase that the first has made.
constexpr Way WAYS[] = {
    {"Charging", "User clicked", ANY, P::Charging},
    {"Charging", "user added a cycle", any_of(P::FinalCharge), P::Charging},
    {"Charging", "voltage has leveled off", any_of(P::Charging, P::Ready), P::ChargingLeveled},
    {"Charging", "charging voltage drop >=", any_of(P::FullChargeTest), P::ChargingLeveled},
    {"Charging", "voltage (", any_of(P::Discharging, P::IrTest), P::Charging},
    {"Full Charge Test", "next_charge_test_timeout",
     any_of(P::ChargingLeveled, P::Ready, P::Discharging), P::FullChargeTest},
    {"Ready for", "max charge time reached", any_of(P::Charging, P::ChargingLeveled), P::Ready},
    {"Ready for", "charging voltage drop <", any_of(P::FullChargeTest), P::Ready},
    {"Discharging", "User clicked", any_of(P::Charging, P::ChargingLeveled, P::Ready),
     P::Discharging},
    {"Discharging", "max charge time reached", any_of(P::Charging, P::ChargingLeveled),
     P::Discharging},
    {"Discharging", "charging voltage drop <", any_of(P::FullChargeTest), P::Discharging},
    {"Discharging", "Finished recovering", any_of(P::IrRecovery), P::Discharging},
    {"IR Test", "amp_hours (", any_of(P::Discharging), P::IrTest},
    {"Recovering from IR Test", "Completed IR Test", any_of(P::IrTest), P::IrRecovery},
    {"Charging (final)", "voltage (", any_of(P::Discharging, P::IrTest, P::FinalChargeTest),
     P::FinalCharge},
    {"Charging (final)", "User clicked", any_of(P::Discharging), P::FinalCharge},
    {"Final Charge Test", "next_charge_test_timeout", any_of(P::FinalCharge, P::Done),
     P::FinalChargeTest},
    {"Done", "max charge time reached", any_of(P::FinalCharge), P::Done},
    {"Done", "voltage (", any_of(P::FinalChargeTest), P::Done},
    {"Done", "User clicked", any_of(P::FinalCharge), P::Done},
};

/** "Ready for 2nd Discharge" begins with its name only: the number tells nothing here. */
bool has_name(const QString& phase, const char* name)
{
    return phase == name || (phase.startsWith("Ready for") && qstrcmp(name, "Ready for") == 0);
}

/** Null for a change that no version of the application is known to make. */
const Way* way_of(const PhaseChange& change)
{
    for (const Way& way : WAYS)
        if (has_name(change.phase, way.phase) && change.reason.startsWith(way.reason))
            return &way;
    return nullptr;
}

/** Of "amp_hours (0.500) >= ..."; -1 for every other reason. */
double tested_at(const QString& reason)
{
    if (!reason.startsWith("amp_hours ("))
        return -1.0;
    bool ok = false;
    const double amp_hours = reason.section('(', 1).section(')', 0, 0).toDouble(&ok);
    return ok ? amp_hours : -1.0;
}
/** Whether the test in this phase might go on while another is started. A skip of its own is no start. */
bool may_be_left(RoadPhase phase, const PhaseChange& change)
{
    if (!is_start_by_hand(change) || phase == P::Unknown || phase == P::Done)
        return false;
    return phase != P::Discharging || change.reason.contains("'Start'");
}
}  // namespace

bool PhaseRoad::goes_on(const PhaseChange& change, RoadPhase from) const
{
    const Way* const way = way_of(change);
    if (way == nullptr || from == P::Unknown)
        return true;
    const double at = tested_at(change.reason);
    return (way->from & bit(from)) != 0 && (at < 0.0 || at >= amp_hours);
}

bool PhaseRoad::take(const PhaseChange& change)
{
    const Way* const way = way_of(change);
    const RoadPhase next = way == nullptr ? P::Unknown : way->to;
    const bool of_another =
        !goes_on(change, phase) && std::any_of(left.cbegin(), left.cend(), [way](RoadPhase from) {
            return (way->from & bit(from)) != 0;
        });
    if (may_be_left(phase, change) && left.size() < MOST_LEFT)
        left << phase;
    const bool same_discharge =
        next == P::IrTest || next == P::IrRecovery || phase == P::IrRecovery;
    amp_hours = same_discharge ? qMax(amp_hours, tested_at(change.reason)) : 0.0;
    phase = next;
    return !of_another;
}

bool is_start_by_hand(const PhaseChange& change)
{
    return change.phase == "Charging" && change.reason.startsWith("User clicked");
}
