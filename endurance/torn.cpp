#include "support/station_bench.h"
#include "support/test_files.h"

#include "config/settings.h"
#include "station/test_station.h"

#include <QApplication>
#include <QTemporaryDir>

#include <cstdio>
#include <unistd.h>

// What a crash or an interrupted write leaves of a log: it is loaded or refused, and never touched.

namespace
{
constexpr unsigned LONGEST_LOAD_S = 20;

/** What was tried, and what went wrong. */
struct Count
{
    int tried = 0;
    int loaded = 0;
    int changed = 0;
    int refused_at_line_end = 0;
    int not_resumed = 0;

    bool good() const
    {
        return tried > 0 && loaded > 0 && changed == 0 && refused_at_line_end == 0 &&
               not_resumed == 0;
    }
};

/** The next of `runs` attempts spread evenly over `all`. */
class Stride
{
public:
    Stride(qint64 new_all, qint64 new_runs) : all(new_all), runs(qMin(new_all, new_runs))
    {
    }

    bool takes(qint64 number) const
    {
        return (number + 1) * runs / all != number * runs / all;
    }

private:
    qint64 all;
    qint64 runs;
};

bool loads(TestStation& preview, const QString& path)
{
    ::alarm(LONGEST_LOAD_S);  // a hang ends the process, and so the row
    preview.data_log = new QFile(path);
    const bool loaded =
        preview.data_log->open(QIODevice::ReadWrite | QIODevice::Text) && preview.read_data_log();
    ::alarm(0);
    return loaded;
}

/** On the torn end a test goes on; what it writes there must not cost what was there. */
bool resumes(TestStation& preview, const QString& path)
{
    preview.leg_start_time = QDateTime(QDate(2020, 4, 3), QTime(9, 15));
    preview.write_charge_cycle_header();
    preview.append_data_log(1.0, 41.52);
    const int cycles = preview.cycles.size();
    TestStation again(nullptr, nullptr);
    return loads(again, path) && again.cycles.size() == cycles;
}

class Torn
{
public:
    explicit Torn(Count& new_count) : count(new_count), path(folder.filePath("torn.csv"))
    {
    }

    /** @param must_load it ends with a line and is not torn otherwise */
    void try_log(const QByteArray& bytes, bool must_load, bool resume)
    {
        write_file(path, bytes);
        TestStation preview(nullptr, nullptr);
        const bool loaded = loads(preview, path);
        if (qEnvironmentVariable("KEST_ENDURANCE_BROKEN") == "writes")
            preview.append_data_log(1.0, 41.52);
        ++count.tried;
        count.loaded += loaded ? 1 : 0;
        count.changed += content_of(path) == bytes ? 0 : 1;
        count.refused_at_line_end += must_load && !loaded ? 1 : 0;
        if (loaded && resume)
            count.not_resumed += resumes(preview, path) ? 0 : 1;
    }

private:
    Count& count;
    QTemporaryDir folder;
    QString path;
};

/** The older form has a head of fixed lines: without all of them it is no log. */
int length_of_head(const QByteArray& log)
{
    const int titles = log.indexOf("\nTime (s)\t");
    return titles < 0 ? log.indexOf('\n') + 1 : log.indexOf('\n', titles + 1) + 1;
}

void cut(Torn& torn, const QByteArray& log, qint64 runs)
{
    const Stride stride(log.size() + 1, runs);
    const int head = length_of_head(log);
    const bool current = log.startsWith("Kestrometer Log");
    for (int length = 0; length <= log.size(); ++length) {
        const bool at_line_end = length >= head && log[length - 1] == '\n';
        if (at_line_end || stride.takes(length))
            torn.try_log(log.left(length), at_line_end, current);
    }
}

void flip(Torn& torn, const QByteArray& log, qint64 runs)
{
    constexpr int CHANGES = 10;  // each bit, all bits, no bit
    const Stride stride(qint64(log.size()) * CHANGES, runs);
    for (qint64 number = 0; number < qint64(log.size()) * CHANGES; ++number) {
        if (!stride.takes(number))
            continue;
        QByteArray bytes = log;
        char& byte = bytes.data()[number / CHANGES];
        const int change = int(number % CHANGES);
        byte = char(change < 8 ? byte ^ (1 << change) : change == 8 ? ~byte : 0);
        torn.try_log(bytes, false, false);
    }
}
}  // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    load_test_settings(folder.path());
    const qint64 runs = QByteArray(argv[1]).toLongLong();
    Count count;
    for (int i = 2; i < argc; ++i) {
        Torn torn(count);
        const QByteArray log = content_of(argv[i]);
        cut(torn, log, runs / (argc - 2) / 3);
        flip(torn, log, runs / (argc - 2) * 2 / 3);
    }
    std::printf("%d %d %d %d %d\n", count.tried, count.loaded, count.changed,
                count.refused_at_line_end, count.not_resumed);
    return count.good() ? 0 : 1;
}
