#include "support/whole_test.h"

#include "support/golden_file.h"
#include "support/reloaded_log.h"

#include "device/kestrometer.h"
#include "station/test_station.h"

WholeTest::WholeTest(const PackModel& pack)
    : station(*bench.station), link(bench.wire, station, pack, 7)
{
    bench.instrument->set_state(Off);
    run(1);
}

PackModel WholeTest::quick_pack()
{
    PackModel pack;
    pack.capacity_ah = 0.04;
    pack.state_of_charge = 1.0;
    return pack;
}

void WholeTest::start(const QString& name, const QString& serial_number)
{
    tell("start");
    bench.start(name, serial_number);
    link.take_commands();
}

void WholeTest::run(int seconds)
{
    for (int i = 0; i < seconds; ++i) {
        link.take_commands();
        for (int line = 0; line < lines_per_second; ++line) {
            bench.clock.advance_seconds(1.0 / lines_per_second);
            link.advance(1.0 / lines_per_second);
        }
        blink_on = !blink_on;
        station.slot_blink(blink_on);
        tell("tick");
        link.take_commands();
    }
}

bool WholeTest::run_to(Phase phase, int most)
{
    for (int second = 0; second < most && station.phase != phase; ++second)
        run(1);
    return station.phase == phase;
}

void WholeTest::tell(const char* event) const
{
    if (on_event)
        on_event(event);
}

void WholeTest::press(const char* button)
{
    tell(button);
    bench.press(button);
    link.take_commands();
}

void WholeTest::level_off()
{
    for (int second = -600; second < 0; ++second)
        station.charge_voltage_series.add(second, 25.2);
}

QString WholeTest::difference_from(const QString& name)
{
    link.take_commands();
    QStringList differences;
    differences << difference_from_golden("whole/" + name + ".commands", link.commands)
                << difference_from_golden("whole/" + name + ".csv", bench.csv())
                << difference_from_golden("whole/" + name + ".txt", bench.txt())
                << difference_after_reload(station, bench.csv());
    differences.removeAll(QString());
    return differences.join('\n');
}
