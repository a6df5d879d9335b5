#pragma once

/** What the simulated instrument does with its pack. Scoped: the device object has bare names alike. */
enum class InstrumentState
{
    Off,
    Charging,
    Discharging,
};

/** The letter in the last field of a line, and the command byte that leads to the state. */
constexpr char state_letter(InstrumentState state)
{
    switch (state) {
    case InstrumentState::Off:
        return 'O';
    case InstrumentState::Charging:
        return 'C';
    case InstrumentState::Discharging:
        return 'D';
    }
    return '?';
}
