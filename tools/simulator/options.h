#pragma once

#include "simulator/pack_model.h"

#include <QString>
#include <QStringList>

/** What the command line asks for. */
struct Options
{
    PackModel pack() const;

    double rate = 1.0;   ///< lines a second of the instrument's time
    double speed = 1.0;  ///< seconds of the instrument's time in a second
    bool rate_given = false;
    double id = 1.0;
    double delay = 0.0;  ///< lines by which the state letter lags
    QString link;        ///< path of the symbolic link; empty for none
    QStringList faults;
    QString record;  ///< path of the file that keeps what the instrument was told; empty for none
    QString recording;  ///< path; empty for a simulated instrument
    bool exit_at_end = false;
    bool exit_with_stdin = false;
    double linger = 0.0;  ///< seconds, of real time, that it outlives standard input and readers

    // The pack; its own defaults stand here too.
    double cells = PackModel().cells;
    double capacity_ah = PackModel().capacity_ah;
    double charge_percent = PackModel().state_of_charge * 100.0;
    double resistance_milliohms = PackModel().internal_resistance * 1000.0;
    double charger_amps = PackModel().charger_amps;
    double charger_volts_per_cell = PackModel().charger_volts_per_cell;
    double load_amps = PackModel().load_amps;
};

enum class OptionsResult
{
    Run,
    Help,  ///< the text is for standard output
    Bad,   ///< the text is for standard error
};

/** Reads the arguments, the program's name first. `text` gets the help or what is wrong. */
OptionsResult read_options(const QStringList& arguments, Options& options, QString& text);
