#include "bench_log.h"
#include "bench_station.h"
#include "bench_table.h"

#include "station/test_station.h"

#include <QApplication>
#include <QFile>
#include <QProcess>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <functional>
#include <malloc.h>
#include <memory>

namespace
{
constexpr int ROWS = BENCH_LOG_ROWS;
constexpr int ROUNDS = 9;

/** Reads the rows of the log by the names of its columns; prints its CPU seconds. */
const char* const PANDAS = R"(
import statistics, sys, time
import pandas
path, header_lines, rounds = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
times = []
for _ in range(rounds):
    start = time.process_time()
    table = pandas.read_csv(path, skiprows=header_lines, header=None, names=list("tavir"))
    times.append(time.process_time() - start)
print(statistics.median(times), len(table))
)";

/** The plainest way to the same lists and totals: nothing is checked, nothing unusual understood. */
class BareLoad
{
public:
    void load(const QByteArray& path, int header_lines)
    {
        std::FILE* file = std::fopen(path.constData(), "r");
        if (file == nullptr)
            qFatal("The log cannot be read.");
        lines_to_skip = header_lines;
        size_t held = 0;
        while (const size_t count = std::fread(buffer + held, 1, sizeof buffer - held, file)) {
            const char* const end = buffer + held + count;
            const char* const rest = take_lines(buffer, end);
            held = size_t(end - rest);
            std::memmove(buffer, rest, held);
        }
        std::fclose(file);
    }

    QList<QPointF> voltage;
    QList<QPointF> current;
    QList<QPointF> resistance;
    double watt_hours = 0.0;

private:
    const char* take_lines(const char* at, const char* end)
    {
        while (const void* found = std::memchr(at, '\n', size_t(end - at))) {
            const char* const line_end = static_cast<const char*>(found);
            if (lines_to_skip > 0)
                --lines_to_skip;
            else
                take_row(at, line_end);
            at = line_end + 1;
        }
        return at;
    }

    void take_row(const char* at, const char* end)
    {
        double values[5];
        int count = 0;
        while (at < end) {
            at = std::from_chars(at, end, values[count++]).ptr;
            if (at != end)
                ++at;
        }
        const auto& [time, amp_hours, volts, amps, ohms] = values;
        watt_hours += ((time - previous[0]) / 3600.0) * ((previous[2] + amps) * 0.5) *
                      ((previous[1] + volts) * 0.5);
        voltage.append(QPointF(amp_hours, volts));
        current.append(QPointF(amp_hours, amps));
        if (count == 5)
            resistance.append(QPointF(amp_hours, ohms * 1000.0));
        previous[0] = time;
        previous[1] = volts;
        previous[2] = amps;
    }

    char buffer[65536];
    int lines_to_skip = 0;
    double previous[3] = {};
};

class LoadLogBench
{
public:
    LoadLogBench() : path(folder.filePath("log.csv"))
    {
        use_bench_settings(folder.path());
        load_bench_help();
        station = std::make_unique<TestStation>(nullptr, nullptr);
        write_bench_log(path);
    }

    /** What is measured is the loading alone: the lists of the round before are gone by then. */
    std::vector<BenchRow> run()
    {
        const BenchRow memory = measure_memory();
        std::vector<double> ours;
        std::vector<double> bare;
        for (int round = 0; round < ROUNDS; ++round) {
            ours.push_back(measure_ours());
            bare.push_back(measure_bare());
        }
        const double our_time = median(ours) / ROWS * 1e9;
        std::vector<BenchRow> rows = {{"a row of a loaded log / fread and from_chars", our_time,
                                       median(bare) / ROWS * 1e9, 1.35}};
        const double pandas = measure_pandas();
        if (pandas > 0.0)
            rows.push_back({"the same / pandas.read_csv", our_time, pandas / ROWS * 1e9, 1 / 1.5});
        rows.push_back(memory);
        return rows;
    }

private:
    static double seconds_for(const std::function<void()>& work)
    {
        const double start = cpu_seconds();
        work();
        return cpu_seconds() - start;
    }

    double measure_ours()
    {
        const double seconds = load();
        station->unload_test_data();
        return seconds;
    }

    /** Loads the log as a station does that has opened it. */
    double load()
    {
        station->data_log = new QFile(path);
        bool accepted = station->data_log->open(QIODevice::ReadWrite | QIODevice::Text);
        const double seconds =
            seconds_for([&] { accepted = accepted && station->read_data_log(); });
        if (!accepted || station->current_cycle->voltage_vs_amphours.points.size() != ROWS)
            qFatal("The log has not been read.");
        return seconds;
    }

    double measure_bare()
    {
        BareLoad bare;
        const double seconds = seconds_for([&] { bare.load(path.toLocal8Bit(), header_lines()); });
        if (bare.voltage.size() != ROWS)
            qFatal("The bare loop has not read the log.");
        keep(bare.watt_hours);
        return seconds;
    }

    /** What the heap holds more with the log than without, for each point kept. */
    BenchRow measure_memory()
    {
        const size_t before = heap_bytes();
        load();
        const size_t after = heap_bytes();
        const TestCycle& cycle = *station->current_cycle;
        const int points = cycle.voltage_vs_amphours.points.size() +
                           cycle.current_vs_amphours.points.size() +
                           cycle.internal_resistance.points.size();
        station->unload_test_data();
        BenchRow row;
        row.work = "memory for each point of a loaded log";
        row.ours = double(after - before) / points;
        row.unit = "bytes";
        row.target_figure = 47.5;
        return row;
    }

    static size_t heap_bytes()
    {
        const struct mallinfo2 info = ::mallinfo2();
        return info.uordblks + info.hblkhd;
    }

    /** CPU seconds, 0 where this Python has no pandas. */
    double measure_pandas()
    {
        QProcess python;
        python.start("/usr/bin/python3", {"-c", PANDAS, path, QString::number(header_lines()),
                                          QString::number(ROUNDS)});
        if (!python.waitForFinished(-1) || python.exitCode() != 0)
            return 0.0;
        const QList<QByteArray> answer = python.readAllStandardOutput().simplified().split(' ');
        if (answer.size() != 2 || answer[1].toInt() != ROWS)
            qFatal("pandas has read another log.");
        return answer[0].toDouble();
    }

    static int header_lines()
    {
        return bench_log_header().count('\n');
    }

    QTemporaryDir folder;
    QString path;
    std::unique_ptr<TestStation> station;
};
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    LoadLogBench bench;
    print_bench_table(bench.run());
    return 0;
}
