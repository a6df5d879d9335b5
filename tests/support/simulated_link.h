#pragma once

#include "simulator/simulated_instrument.h"

#include <QByteArray>

#include <functional>

class TestStation;
class Wire;

/** The simulated instrument at the far end of a station's cable, and the record of what it is told. */
class SimulatedLink
{
public:
    SimulatedLink(Wire& cable, TestStation& listener, const PackModel& pack, int id);

    /** The instrument lives on for so long: what it says reaches the station, and the answer it. */
    void advance(double seconds);
    /** Hands over what the station has commanded; to be called before the clock moves on. */
    void take_commands();
    /** Sets a fault in the words of the simulator, "silence 10". */
    void set_fault(const QString& words);

    SimulatedInstrument simulated;
    std::function<void(const QByteArray&)> on_send;  ///< told of what the instrument sends, before
    /** A line for each command: "2020-04-03 09:15:01 line 2, phase 1 Charging: 43". */
    QByteArray commands;
    int lines = 0;  ///< line ends that the instrument has sent

private:
    void send(const QByteArray& bytes);
    void record(const QByteArray& command);

    Wire& wire;
    TestStation& station;
    bool plugged = true;
};
