#pragma once

#include <QString>
#include <QStringList>

/** What the command line asks for. */
struct GuardOptions
{
    int program_words = 0;  ///< so many last arguments are the program and what is for it
    int frozen_seconds = 60;
    bool kill_frozen = false;
    bool off = false;
    bool all = false;
    QStringList ports;  ///< to be switched off by hand
    double speed = 1.0;
};

enum class GuardStart
{
    Run,
    Tell,  ///< the text is for standard output
    Refuse,
};

/** Reads the arguments, the guard's own name first. `text` gets the help, the version or what is wrong. */
GuardStart read_guard_options(const QStringList& arguments, GuardOptions& options, QString& text);
