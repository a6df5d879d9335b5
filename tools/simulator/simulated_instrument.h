#pragma once

#include "simulator/fault_state.h"
#include "simulator/instrument_state.h"
#include "simulator/pack_model.h"

#include <QByteArray>
#include <QList>

#include <deque>

/**
 * The instrument at the other end of the serial line, without line and clock.
 *
 * What the application writes goes in by receive(); each advance() lets time pass and gives what
 * stands on the wire behind it, as a rule one line:
 *
 *     SimulatedInstrument instrument(PackModel(), 7);
 *     instrument.receive("D");
 *     instrument.advance(1.0);  // "KEST\t21.57\t5.0\t25.0\t0\tID=7\tD\r\n"
 */
class SimulatedInstrument
{
public:
    explicit SimulatedInstrument(const PackModel& pack_model = PackModel(), int instrument_id = 1);

    /** Takes command bytes, cut anywhere. They act at once: the next line tells of it. */
    void receive(const QByteArray& bytes);
    /** Lets `seconds` pass. Usually gives one line; with faults nothing, garbage or many lines. */
    QByteArray advance(double seconds);

    /** False while the port is gone: it is then to be closed, and to be opened anew afterwards. */
    bool port_present() const;
    /** True if the bytes of the last advance() are to be written one by one. */
    bool splits_bytes() const;

    /** Off and silent for a while, and deaf; faults stay. */
    void restart(double seconds);
    /** Off and silent until the reset sequence comes. */
    void enter_bootloader();

    PackModel pack;
    int id = 1;
    int letter_delay = 0;  ///< lines by which the state letter lags behind the state
    InstrumentState state = InstrumentState::Off;
    FaultState faults;

    static constexpr double RESTART_SECONDS = 2.0;

private:
    struct LateCommand
    {
        char command;
        int lines;
    };

    void receive_byte(char byte);
    void take_command(char command);
    void obey(char command);
    void obey_late_commands();
    QByteArray next_line(double seconds);
    char reported_letter();
    void distort(PackReading& reading);
    QByteArray through_time_faults(const QByteArray& line, double seconds);

    bool in_bootloader = false;
    double restart_left = 0.0;                ///< seconds
    QByteArray bootloader_input;              ///< last bytes heard in the bootloader
    QList<LateCommand> late_commands;         ///< heard, not yet obeyed
    std::deque<InstrumentState> past_states;  ///< of the last lines, newest first
    double loaded_volts = 0.0;                ///< under the load that has just gone
    bool rests_from_load = false;             ///< Off, and Discharging before that
    int slow_steps = 0;                       ///< without a line so far
    QByteArray held_lines;                    ///< for one write later on
    QByteArray echoes;
    bool split_now = false;
};
