#pragma once

#include "support/whole_test.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

#include <functional>
#include <memory>
#include <vector>

/** A second station beside a test: its instrument has a cable, and the first one's clock. */
class Neighbour
{
public:
    /** @param id of the instrument */
    Neighbour(WholeTest& first, int id);

    void start(const char* name, const char* serial_number);
    /** A second of its life; the operator starts a discharge where one is waited for. */
    void run_second();

    Wire wire;
    TestStation station;
    SimulatedLink link;

private:
    bool blink_on = false;
    WholeTest& first;
};

/** What a port can do to a station that is to be added; the words of the faults "port ...". */
namespace PortTroubles
{
/** Empty if nothing comes from such a port and nobody is told; else what is wrong. */
QString add_station_on(const QString& trouble, WholeTest& first, int seconds);

/**
 * The instrument is plugged in again: the operator closes the panel, adds a station, loads the log and
 * presses Start. Empty if the test comes to Done behind the rows that it had.
 */
QString go_on_at_new_port(WholeTest& first, bool under_another_name, const QString& log);
}  // namespace PortTroubles
