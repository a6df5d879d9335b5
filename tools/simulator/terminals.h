#pragma once

#include "simulator/pseudo_terminal.h"

#include <QStringList>

#include <ctime>
#include <memory>
#include <vector>

/** The instruments' ends of many lines. */
using Terminals = std::vector<std::unique_ptr<PseudoTerminal>>;

/** Ends the program if the system has not so many to give. */
Terminals open_terminals(int count);

/** The names of the other sides, as a serial port knows them. */
QStringList port_names(const Terminals& terminals);

/** A steady beat for whoever speaks in turn. */
class Beat
{
public:
    Beat();

    /** Until so long after the last time; who was held up does not make up for it all at once. */
    void wait(long nanoseconds);

private:
    timespec next = {};
};
