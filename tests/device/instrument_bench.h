#pragma once

#include "support/test_clock.h"
#include "support/wire.h"

#include "device/kestrometer.h"

/** An instrument on its cable, and the clock. */
struct InstrumentBench
{
    bool send(const QByteArray& line)
    {
        return wire.send(line, instrument);
    }

    TestClock clock;
    Wire wire;
    Kestrometer instrument{wire.port_name()};
};
