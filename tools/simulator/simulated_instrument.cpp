#include "simulator/simulated_instrument.h"

#include <algorithm>

namespace
{
const QByteArray RESET_SEQUENCE = QByteArray::fromHex("55555555555500000004");
constexpr char BOOTLOADER_COMMAND = 'U';
// No line end in it: what a bootloader says at another speed is no line.
const QByteArray BOOTLOADER_NOISE = QByteArray::fromHex("FC7F001555C3AA00FE");

// Durations are sums of line times: what is left of ten tenths of a second is not quite nothing.
constexpr double NO_TIME = 1e-6;

/** True while time is left; uses up `seconds` of it. */
bool take_time(double& left, double seconds)
{
    const bool was_left = left > NO_TIME;
    left = std::max(0.0, left - seconds);
    return was_left;
}
}  // namespace

SimulatedInstrument::SimulatedInstrument(const PackModel& pack_model, int instrument_id)
    : pack(pack_model), id(instrument_id)
{
}

void SimulatedInstrument::receive(const QByteArray& bytes)
{
    if (!port_present())
        return;
    if (faults.echo)
        echoes += bytes;
    for (const char byte : bytes)
        receive_byte(byte);
}

void SimulatedInstrument::receive_byte(char byte)
{
    if (restart_left > NO_TIME)
        return;
    if (!in_bootloader && byte == BOOTLOADER_COMMAND)
        enter_bootloader();
    if (!in_bootloader) {
        take_command(byte);
        return;
    }
    // The "U" that led here counts: the sequence begins with it, and so also restarts a healthy instrument.
    bootloader_input = (bootloader_input + byte).right(RESET_SEQUENCE.size());
    if (bootloader_input == RESET_SEQUENCE)
        restart(RESTART_SECONDS);
}

void SimulatedInstrument::take_command(char command)
{
    if (!QByteArray("OCD").contains(command) || faults.deaf.active())
        return;
    if (faults.ignored_commands > 0)
        --faults.ignored_commands;
    else if (faults.command_delay > 0)
        late_commands.append({command, faults.command_delay});
    else
        obey(command);
}

void SimulatedInstrument::obey(char command)
{
    const InstrumentState before = state;
    const double volts_before = pack.reading(before).volts;
    for (const auto candidate :
         {InstrumentState::Off, InstrumentState::Charging, InstrumentState::Discharging})
        if (state_letter(candidate) == command)
            state = candidate;
    if (state == before)
        return;
    rests_from_load = state == InstrumentState::Off && before == InstrumentState::Discharging;
    loaded_volts = volts_before;
}

void SimulatedInstrument::obey_late_commands()
{
    while (!late_commands.isEmpty() && late_commands.first().lines <= 0)
        obey(late_commands.takeFirst().command);
    for (LateCommand& late : late_commands)
        --late.lines;
}

void SimulatedInstrument::restart(double seconds)
{
    enter_bootloader();
    in_bootloader = false;
    restart_left = seconds;
}

void SimulatedInstrument::enter_bootloader()
{
    in_bootloader = true;
    bootloader_input.clear();
    late_commands.clear();
    past_states.clear();
    state = InstrumentState::Off;
    rests_from_load = false;
}

bool SimulatedInstrument::port_present() const
{
    return faults.absent_seconds <= NO_TIME;
}

bool SimulatedInstrument::splits_bytes() const
{
    return split_now;
}

QByteArray SimulatedInstrument::advance(double seconds)
{
    static const QByteArray digits = "0123456789";
    QByteArray wire;
    wire.swap(echoes);
    wire += digits.repeated(faults.babble_bytes / 10 + 1).left(faults.babble_bytes);
    faults.babble_bytes = 0;
    split_now = false;

    const double elapsed = std::max(0.0, seconds);
    const double step = elapsed / faults.fast;
    for (int i = faults.fast; i > 0; --i)
        wire += through_time_faults(next_line(step), step);
    return take_time(faults.absent_seconds, elapsed) ? QByteArray() : wire;
}

QByteArray SimulatedInstrument::next_line(double seconds)
{
    obey_late_commands();
    PackReading reading = pack.advance(seconds, state);
    const bool restarting = take_time(restart_left, seconds);
    if (in_bootloader && faults.bootloader_noise)
        return BOOTLOADER_NOISE;
    if (restarting || in_bootloader || ++slow_steps < faults.slow)
        return {};
    slow_steps = 0;

    distort(reading);
    TelemetryLine line(reading.volts, reading.amps, id, reported_letter());
    for (LineFault& fault : faults.line_faults)
        if (fault.lines.take())
            fault.apply(line, fault);
    split_now = faults.split_bytes.take() || split_now;
    faults.deaf.take();
    return line.bytes();
}

void SimulatedInstrument::distort(PackReading& reading)
{
    if (state != InstrumentState::Off)
        return;
    if (faults.residual_current.take())
        reading.amps = faults.residual_amps;
    if (faults.rebound.active() && rests_from_load) {
        faults.rebound.take();
        reading.volts = loaded_volts + faults.rebound_volts;
    }
}

char SimulatedInstrument::reported_letter()
{
    past_states.push_front(state);
    past_states.resize(std::min(past_states.size(), size_t(letter_delay) + 1));
    return faults.stuck_letter.take() ? faults.letter : state_letter(past_states.back());
}

QByteArray SimulatedInstrument::through_time_faults(const QByteArray& line, double seconds)
{
    const bool silent = take_time(faults.silent_seconds, seconds);
    const bool in_burst = take_time(faults.burst_seconds, seconds);
    if (line.isEmpty() || silent)
        return {};
    const bool in_merge = faults.merge_lines > 1;
    faults.merge_lines = std::max(0, faults.merge_lines - 1);
    held_lines += line;
    if (in_burst || in_merge)
        return {};
    QByteArray wire;
    wire.swap(held_lines);
    return wire;
}
