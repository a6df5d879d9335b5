#include "device/kestrometer_state.h"

namespace
{
struct StateTraits
{
    KestrometerState state;
    char letter;  ///< in a telemetry line, and as command byte
};

constexpr StateTraits STATES[] = {
    {Off, 'O'},
    {Charging, 'C'},
    {Discharging, 'D'},
};
}  // namespace

KestrometerState state_from_letter(QChar letter)
{
    for (const StateTraits& row : STATES) {
        if (row.letter == letter.toLatin1())
            return row.state;
    }
    return Unknown;
}

QByteArray command_for_state(KestrometerState state)
{
    for (const StateTraits& row : STATES) {
        if (row.state == state)
            return QByteArray(1, row.letter);
    }
    return QByteArray();
}
