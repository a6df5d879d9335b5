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

#include <memory>

namespace
{
constexpr int ROUNDS = 5;

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
        return {
            in_turn("info of a row / the application's load", target, [this] { info(); }),
            in_turn("check of a row / the same", target, [this] { check(); }),
            in_turn("export of a row as csv / the same", export_target, [this] { make_csv(); })};
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
