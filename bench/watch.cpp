#include "bench_log.h"
#include "bench_table.h"
#include "watch/watch.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <memory>
#include <unistd.h>
#include <vector>

namespace
{
constexpr int LOGS = 1000;
constexpr int ROWS = 20000;
constexpr int TESTS = 16;
constexpr int LOOKS = 200;
constexpr double SECONDS_A_LOOK = 2.0;

const QByteArray STARTED =
    "2020-04-03 10:02:44 Switching to phase Discharging because User clicked "
    "'Skip'\n";

void write_file(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written.", qPrintable(path));
}

QByteArray content_of(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s cannot be read.", qPrintable(path));
    return file.readAll();
}

double resident_megabytes()
{
    const QList<QByteArray> pages = content_of("/proc/self/statm").split(' ');
    return double(pages.at(1).toLongLong() * ::sysconf(_SC_PAGESIZE)) / 1e6;
}

/** A folder of logs that tests write by this process's own hand, and of logs of earlier tests. */
class Shop
{
public:
    Shop()
    {
        settings.folders = QStringList{folder.path()};
        settings.state_folder = state.path();
    }

    void add_earlier_logs()
    {
        write_bench_log(folder.filePath("0.csv"), ROWS);
        const QByteArray log = content_of(folder.filePath("0.csv"));
        for (int i = 1; i < LOGS; ++i) {
            const QString name = QString::number(i);
            write_file(folder.filePath(name + ".csv"), log);
            write_file(folder.filePath(name + ".txt"), STARTED);
        }
    }

    void add_running_test(int rows)
    {
        const QString name = folder.filePath(QString("running %1").arg(running.size()));
        write_bench_log(name + ".csv", rows);
        write_file(name + ".txt", STARTED);
        running.push_back(std::make_unique<QFile>(name + ".csv"));
        if (!running.back()->open(QIODevice::ReadWrite | QIODevice::Append))
            qFatal("The log cannot be opened.");
    }

    void write_rows()
    {
        for (const auto& log : running)
            for (int row = 0; row < int(SECONDS_A_LOOK); ++row) {
                log->write("20061.0,55.466,40.97,9.98\n");
                log->flush();
            }
    }

    /** Until all earlier logs are known; CPU seconds. */
    double start()
    {
        const double begin = cpu_seconds();
        Watch watch(settings);
        Moment now = present_moment();
        do {
            watch.look(now);
            now.awake_ms += 2000;
        } while (!watch.knows_all_logs());
        return cpu_seconds() - begin;
    }

    /** CPU seconds of a look while the tests write. */
    double look()
    {
        Watch watch(settings);
        Moment now = present_moment();
        watch.look(now);
        double spent = 0.0;
        for (int i = 0; i < LOOKS; ++i) {
            write_rows();
            now.awake_ms += qint64(SECONDS_A_LOOK * 1000.0);
            const double begin = cpu_seconds();
            const Look seen = watch.look(now);
            spent += cpu_seconds() - begin;
            if (!seen.test_runs || seen.situations.size() < int(running.size()))
                qFatal("The tests have not been seen to run.");
        }
        return spent / LOOKS;
    }

    QTemporaryDir folder;
    QTemporaryDir state;
    WatchSettings settings;
    std::vector<std::unique_ptr<QFile>> running;
};

double memory_of(int rows)
{
    Shop shop;
    shop.add_running_test(rows);
    Watch watch(shop.settings);
    watch.look(present_moment());
    shop.write_rows();
    watch.look(present_moment());
    return resident_megabytes();
}
}  // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    std::printf("Memory with a log of %d rows: %.1f MB", ROWS, memory_of(ROWS));
    std::printf(", of %d rows: %.1f MB\n", BENCH_LOG_ROWS, memory_of(BENCH_LOG_ROWS));
    Shop shop;
    shop.add_earlier_logs();
    std::printf("First start over %d logs of %d rows: %.2f s\n", LOGS, ROWS, shop.start());
    const double second = shop.start();
    std::printf("Second start: %.3f s (target < 2)\n", second);
    for (int i = 0; i < TESTS; ++i)
        shop.add_running_test(ROWS);
    std::printf("%d running tests: %.3f %% of a core (target < 0.5)\n", TESTS,
                shop.look() / SECONDS_A_LOOK * 100.0);
    return 0;
}
