#include "bench_station.h"
#include "bench_table.h"

#include "station/test_station.h"

#include <QApplication>

#include <cstdio>
#include <malloc.h>

namespace
{
constexpr int STEPS[] = {18000, 36000, 100000, 360000};  // lines; the last make 100 hours
constexpr int WARM_UP = 1000;

/** Bytes that the process holds from the heap, blocks of their own included. */
double heap_bytes()
{
    const struct mallinfo2 info = ::mallinfo2();
    return double(info.uordblks) + double(info.hblkhd);
}

/** The series alone: two lists in which points are put as the engine does. */
double bytes_of_bare_lists(int points)
{
    const double before = heap_bytes();
    QList<QPointF> voltages;
    QList<QPointF> currents;
    for (int point = 0; point < points; ++point) {
        voltages.append(QPointF(point, 41.0));
        currents.append(QPointF(point, 9.9));
    }
    return heap_bytes() - before;
}
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    BenchStation bench("1042");
    for (int line = 0; line < WARM_UP; ++line)
        bench.receive_line();
    // Begun anew, so that the count starts at an empty cycle and with all else in place.
    bench.station->set_phase(PHASE_CHARGING, "User clicked 'Skip'");
    bench.station->set_phase(PHASE_DISCHARGING, "User clicked 'Skip'");
    const TestCycle& cycle = *bench.station->current_cycle;

    const double before = heap_bytes();
    std::vector<QByteArray> names;
    std::vector<BenchRow> rows;
    for (const int lines : STEPS) {
        while (cycle.voltage_vs_amphours.points.size() < lines)
            bench.receive_line();
        const double points = 2.0 * lines;
        const double ours = (heap_bytes() - before) / points;
        const double limit = bytes_of_bare_lists(lines) / points;
        names.push_back("bytes a point after " + QByteArray::number(lines) + " lines / bare lists");
        rows.push_back({nullptr, ours, limit, 0.0, "B", 47.5});
    }
    for (size_t row = 0; row < rows.size(); ++row)
        rows[row].work = names[row].constData();
    print_bench_table(rows);
    return 0;
}
