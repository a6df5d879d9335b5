#include "bench_station.h"
#include "bench_table.h"

#include "station/test_station.h"

#include <QApplication>

namespace
{
constexpr int ROUND_LINES = 1000;
constexpr int CYCLES = 20;
constexpr int POINTS_PER_CYCLE = 18000;
constexpr int RESISTANCES_PER_CYCLE = 100;

void receive_lines(BenchStation& bench)
{
    for (int line = 0; line < ROUND_LINES; ++line)
        bench.receive_line();
}

void receive_and_show_lines(BenchStation& bench)
{
    for (int line = 0; line < ROUND_LINES; ++line) {
        bench.receive_line();
        BenchStation::lay_out_and_paint();
    }
}

/** One hundred hours of discharges, as the engine would have left them. */
void age(TestStation& station)
{
    station.number_of_cycles = CYCLES;
    for (int number = 1; number <= CYCLES; ++number) {
        if (number > 1)
            station.set_phase(PHASE_CHARGING, "User clicked 'Skip'");
        if (number > 1)
            station.set_phase(PHASE_DISCHARGING, "User clicked 'Skip'");
        TestCycle& cycle = *station.current_cycle;
        for (int point = 0; point < POINTS_PER_CYCLE; ++point) {
            cycle.amp_hours = point * 0.0027;
            cycle.voltage_vs_amphours.add(cycle.amp_hours, 41.0);
            cycle.current_vs_amphours.add(cycle.amp_hours, 9.9);
        }
        for (int point = 0; point < RESISTANCES_PER_CYCLE; ++point)
            cycle.internal_resistance.add(point * 0.5, 14.0 + 0.01 * point);
    }
}
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Unset as on a desktop: each question for the local time then looks at the zone's file.
    qunsetenv("TZ");
    const QApplication application(argc, argv);
    BenchStation fresh("1042");
    BenchStation old("1043");
    age(*old.station);

    const BenchRow road = measure(
        "a line to update_ui: 100 hours old / fresh", ROUND_LINES, 0.0, [&] { receive_lines(old); },
        [&] { receive_lines(fresh); });
    BenchStation::lay_out_and_paint();
    const BenchRow shown = measure(
        "the same with layout and paint: 100 hours old / fresh", ROUND_LINES, 0.0,
        [&] { receive_and_show_lines(old); }, [&] { receive_and_show_lines(fresh); });
    print_bench_table({
        {"a line from receive_data to update_ui", road.limit / 1e3, 0.0, 0.0, "us", 15.0},
        {"a line from receive_data to the painted panel", shown.limit / 1e3, 0.0, 0.0, "us"},
        road,
        shown,
    });
    return 0;
}
