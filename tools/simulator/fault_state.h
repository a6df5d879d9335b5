#pragma once

#include "simulator/telemetry_line.h"

#include <QByteArray>

#include <vector>

/** How long a fault lasts, counted in lines of the instrument. */
struct LineSpan
{
    static constexpr int FOREVER = -1;

    bool active() const
    {
        return left != 0;
    }
    /** True while the span lasts; each call uses up one line of it. */
    bool take()
    {
        const bool was_active = active();
        if (left > 0)
            --left;
        return was_active;
    }

    int left = 0;
};

/** A fault in the text of a line: what it does to the line, with which words and for how long. */
struct LineFault
{
    void (*apply)(TelemetryLine& line, const LineFault& fault) = nullptr;
    int field = 0;
    QByteArray text = {};
    LineSpan lines = {};
    const char* name = "";
};

/** The faults that a simulated instrument has at the moment; a fresh one has none. */
struct FaultState
{
    // ---- text ----
    std::vector<LineFault> line_faults;  ///< in the order in which they were set
    LineSpan split_bytes;
    int merge_lines = 0;   ///< lines still to be held back for one write
    int babble_bytes = 0;  ///< to be sent in front of the next line
    bool echo = false;

    // ---- time ----
    double silent_seconds = 0.0;  ///< lines are lost
    double burst_seconds = 0.0;   ///< lines are held back
    int slow = 1;                 ///< one line in so many
    int fast = 1;                 ///< so many lines for one

    // ---- instrument ----
    int ignored_commands = 0;
    bool bootloader_noise = false;  ///< the bootloader sends bytes
    LineSpan deaf;
    int command_delay = 0;  ///< lines until a command is obeyed
    LineSpan stuck_letter;
    char letter = '?';
    LineSpan residual_current;
    double residual_amps = 0.0;
    LineSpan rebound;
    double rebound_volts = 0.0;  ///< voltage without load minus voltage under load

    // ---- port ----
    double absent_seconds = 0.0;  ///< infinite until "return"
};
