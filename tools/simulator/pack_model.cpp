#include "simulator/pack_model.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{
struct CurvePoint
{
    double state_of_charge;
    double volts;
};

// The shape that data sheets and papers show for cells of nickel manganese cobalt oxide and graphite
// at room temperature, rounded to 0.01 V by us: typical values, no measurement of one cell.
constexpr std::array<CurvePoint, 14> OPEN_CIRCUIT_CURVE = {{
    {0.00, 3.00},
    {0.02, 3.20},
    {0.05, 3.35},
    {0.10, 3.45},
    {0.20, 3.55},
    {0.30, 3.61},
    {0.40, 3.66},
    {0.50, 3.72},
    {0.60, 3.81},
    {0.70, 3.91},
    {0.80, 4.00},
    {0.90, 4.09},
    {0.95, 4.13},
    {1.00, 4.20},
}};

// One second is short against the taper of the charger, which takes minutes.
constexpr double LONGEST_STEP = 1.0;
constexpr double MOST_STEPS = 100000.0;
}  // namespace

double cell_open_circuit_voltage(double state_of_charge)
{
    const double charge = std::clamp(state_of_charge, 0.0, 1.0);
    const auto right =
        std::find_if(OPEN_CIRCUIT_CURVE.begin() + 1, OPEN_CIRCUIT_CURVE.end() - 1,
                     [charge](const CurvePoint& p) { return charge <= p.state_of_charge; });
    const auto left = right - 1;
    const double share =
        (charge - left->state_of_charge) / (right->state_of_charge - left->state_of_charge);
    return left->volts + share * (right->volts - left->volts);
}

double PackModel::open_circuit_voltage() const
{
    return cells * cell_open_circuit_voltage(state_of_charge);
}

bool PackModel::conducts(InstrumentState state) const
{
    return state == InstrumentState::Charging ||
           (state == InstrumentState::Discharging && load_connected && !protection_open);
}

PackReading PackModel::reading(InstrumentState state) const
{
    const double rest = open_circuit_voltage();
    if (!conducts(state))
        return {protection_open ? 0.0 : rest, 0.0};
    if (state == InstrumentState::Discharging)
        return {std::max(0.0, rest - load_amps * internal_resistance), load_amps};

    const double headroom = cells * charger_volts_per_cell - rest;
    if (headroom <= 0.0)
        return {rest, 0.0};
    const double amps = internal_resistance > 0.0
                            ? std::min(charger_amps, headroom / internal_resistance)
                            : charger_amps;
    return {rest + amps * internal_resistance, amps};
}

void PackModel::step(double seconds, InstrumentState state)
{
    const double direction = state == InstrumentState::Charging ? 1.0 : -1.0;
    const double moved = direction * reading(state).amps * seconds / 3600.0 / capacity_ah;
    state_of_charge = std::clamp(state_of_charge + moved, 0.0, 1.0);
    if (state == InstrumentState::Charging)
        protection_open = false;
    else if (state_of_charge <= 0.0 || reading(state).volts < cells * protection_volts_per_cell)
        protection_open = true;
}

PackReading PackModel::advance(double seconds, InstrumentState state)
{
    if (!(seconds > 0.0))
        return reading(state);
    const double steps = std::clamp(std::ceil(seconds / LONGEST_STEP), 1.0, MOST_STEPS);
    for (int i = 0; i < int(steps) && conducts(state); ++i)
        step(seconds / steps, state);
    return reading(state);
}
