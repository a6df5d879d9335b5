#pragma once

#include "simulator/instrument_state.h"

/** What stands at the pack's terminals, unrounded. The current is a magnitude in either direction. */
struct PackReading
{
    double volts = 0.0;
    double amps = 0.0;
};

/**
 * A battery pack between a charger and a load: an open-circuit voltage behind a resistance.
 *
 * The defaults are a "22 V" pack of six cells in series, which suits a cutoff of 19.0 V: charged in
 * about an hour and discharged in half of one. Where each number comes from stands in docs/simulator.md.
 */
struct PackModel
{
    /** Lets time pass in this state; what the terminals show at its end. */
    PackReading advance(double seconds, InstrumentState state);
    /** What the terminals show at this moment. */
    PackReading reading(InstrumentState state) const;
    /** Volts of the pack at rest at the present state of charge. */
    double open_circuit_voltage() const;

    int cells = 6;                           ///< in series
    double capacity_ah = 2.5;                ///< amp-hours from full to empty
    double state_of_charge = 0.5;            ///< 0 empty to 1 full
    double internal_resistance = 0.150;      ///< ohms, the whole pack
    double charger_amps = 4.0;               ///< limit in the constant current part
    double charger_volts_per_cell = 4.20;    ///< held in the constant voltage part
    double load_amps = 5.0;                  ///< drawn by the load, whatever the voltage
    double protection_volts_per_cell = 2.5;  ///< below it, under load, the pack's protection opens
    bool load_connected = true;
    bool protection_open = false;  ///< the terminals are dead until a charger closes it again

private:
    bool conducts(InstrumentState state) const;
    void step(double seconds, InstrumentState state);
};

/** Volts of one lithium-ion cell at rest, for a state of charge from 0 to 1. */
double cell_open_circuit_voltage(double state_of_charge);
