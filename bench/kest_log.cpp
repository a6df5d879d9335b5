#include "bench_log.h"
#include "bench_station.h"
#include "bench_table.h"
#include "log/export.h"
#include "log/options.h"
#include "records/log_check.h"

#include "station/test_station.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>

#include <memory>

namespace
{
constexpr int ROUNDS = 5;

// What a script does in place of kest-log: the rows, and as the same tidy table.
const char* const PANDAS = R"(
import pandas, sys, time

def read(path, header_lines):
    table = pandas.read_csv(path, skiprows=header_lines, header=None, names=list("tavir"))
    return table.t, table.a, table.v, table.i, table.r

def export(path, header_lines, to):
    t, a, v, i, r = read(path, header_lines)
    start = pandas.Timestamp("2020-04-03 10:02:44+00:00")
    pandas.DataFrame({
        "battery": "Pack A", "serial_number": "1042", "cycle": 1, "kind": "discharge",
        "section_time_s": t, "test_time_s": t, "time": start + pandas.to_timedelta(t, unit="s"),
        "voltage_V": v, "current_A": -i, "charge_Ah": a,
        "energy_live_Wh": (v * a.diff().fillna(a)).cumsum().round(4),
        "internal_resistance_mOhm": r * 1000}).to_csv(to, index=False)

path, header_lines, to = sys.argv[1], int(sys.argv[2]), sys.argv[3]
for work in (lambda: read(path, header_lines), lambda: export(path, header_lines, to)):
    times = []
    for turn in range(3):
        start = time.process_time()
        work()
        times.append(time.process_time() - start)
    print(sorted(times)[1])
)";

/** What kest-log does with a log of a million rows, beside the application's own load of it. */
class KestLogBench
{
public:
    KestLogBench() : path(folder.filePath("log.csv"))
    {
        use_bench_settings(folder.path());
        load_bench_help();
        station = std::make_unique<TestStation>(nullptr, nullptr);
        write_bench_log(path);
    }

    std::vector<BenchRow> run()
    {
        const double target = 1.2;
        const double export_target = 3.0;
        std::vector<BenchRow> rows = {
            in_turn("info of a row / the application's load", target, [this] { info(); }),
            in_turn("check of a row / the same", target, [this] { check(); }),
            in_turn("export of a row as csv / the same", export_target, [this] { make_csv(); })};
        const std::vector<double> pandas = measure_pandas();
        if (pandas.size() == 2) {
            rows.push_back({"info of a row / pandas reading it", rows[0].ours, pandas[0]});
            rows.push_back({"export of a row as csv / pandas", rows[2].ours, pandas[1]});
        }
        return rows;
    }

private:
    BenchRow in_turn(const char* work, double target, const std::function<void()>& ours)
    {
        std::vector<double> our_times;
        std::vector<double> loads;
        for (int round = 0; round < ROUNDS; ++round) {
            our_times.push_back(seconds_for(ours));
            loads.push_back(load());
        }
        return {work, median(our_times) / BENCH_LOG_ROWS * 1e9,
                median(loads) / BENCH_LOG_ROWS * 1e9, target};
    }

    static double seconds_for(const std::function<void()>& work)
    {
        const double start = cpu_seconds();
        work();
        return cpu_seconds() - start;
    }

    double load()
    {
        station->data_log = new QFile(path);
        bool accepted = station->data_log->open(QIODevice::ReadWrite | QIODevice::Text);
        const double seconds =
            seconds_for([&] { accepted = accepted && station->read_data_log(); });
        if (!accepted)
            qFatal("The log has not been read.");
        station->unload_test_data();
        return seconds;
    }

    /** Nanoseconds for each of both works; nothing where this Python has no pandas. */
    std::vector<double> measure_pandas() const
    {
        QProcess python;
        python.start("/usr/bin/python3",
                     {"-c", PANDAS, path, QString::number(bench_log_header().count('\n')),
                      folder.filePath("pandas.csv")});
        if (!python.waitForFinished(-1) || python.exitCode() != 0)
            return {};
        std::vector<double> figures;
        for (const QByteArray& seconds : python.readAllStandardOutput().trimmed().split('\n'))
            figures.push_back(seconds.toDouble() / BENCH_LOG_ROWS * 1e9);
        return figures;
    }

    void info()
    {
        LogFile file;
        if (!summarize_log(path, file) || file.sections[0].count.rows != BENCH_LOG_ROWS)
            qFatal("The log has not been read.");
    }

    void check()
    {
        LogFile file;
        if (!check_log(path, file) || file.warnings.size() != 1)
            qFatal("The log has not been checked.");
    }

    void make_csv()
    {
        Options options;
        options.command = Command::Export;
        options.format = Format::Csv;
        options.force = true;
        options.to = QString("%1/%2").arg(folder.path()).arg(++exports);
        QDir().mkdir(options.to);
        if (export_of(path, options).code != EXIT_GOOD)
            qFatal("The log has not been exported.");
        QDir(options.to).removeRecursively();
    }

    QTemporaryDir folder;
    QString path;
    std::unique_ptr<TestStation> station;
    int exports = 0;
};
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    KestLogBench bench;
    print_bench_table(bench.run());
    return 0;
}
