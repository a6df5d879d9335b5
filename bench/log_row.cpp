#include "bench_station.h"
#include "bench_table.h"

#include "station/test_station.h"

#include <QApplication>
#include <QFile>

#include <cmath>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int ROWS = 5000;

struct Sample
{
    double time;
    double amp_hours;
    double voltage;
    double current;
};

Sample sample(int row)
{
    return {row * 1.003, row * 0.0027731, 41.0 - 0.01 * (row % 700), 9.8 + 0.1 * (row % 4)};
}

/** A number that is not negative, by hand; the half is rounded up, which a bench may. */
char* put(char* at, double value, int scale)
{
    auto number = (unsigned long long)(value * scale + 0.5);
    char digits[24];
    int count = 0;
    for (int unit = scale; number != 0 || unit != 0; unit /= 10) {
        digits[count++] = char('0' + number % 10);
        number /= 10;
        if (unit == 10)
            digits[count++] = '.';
    }
    while (count != 0)
        *at++ = digits[--count];
    return at;
}

void write_by_hand(int file, const Sample& sample)
{
    char row[96];
    char* at = put(row, sample.time, 10);
    *at++ = ',';
    at = put(at, sample.amp_hours, 1000);
    *at++ = ',';
    at = put(at, sample.voltage, 100);
    *at++ = ',';
    at = put(at, sample.current, 100);
    *at++ = '\n';
    if (::write(file, row, size_t(at - row)) < 0)
        qFatal("The hand-made row cannot be written.");
}

class LogRowBench
{
public:
    LogRowBench() : bench("1042")
    {
        const QString path = bench.folder.filePath("by hand.csv");
        by_hand = ::open(path.toLocal8Bit().constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    }

    ~LogRowBench()
    {
        ::close(by_hand);
    }

    BenchRow run()
    {
        return measure(
            "a log row, in the file at return / digits and write", ROWS, 2.6,
            [this] { append_rows(); }, [this] { write_rows_by_hand(); });
    }

private:
    void append_rows()
    {
        bench.station->data_log->resize(0);
        bench.station->data_log->seek(0);
        for (int row = 0; row < ROWS; ++row) {
            const Sample s = sample(row);
            bench.station->append_data_log(s.time, s.amp_hours, s.voltage, s.current, 0.0);
        }
    }

    void write_rows_by_hand()
    {
        if (::ftruncate(by_hand, 0) != 0 || ::lseek(by_hand, 0, SEEK_SET) != 0)
            qFatal("The hand-made log cannot be begun again.");
        for (int row = 0; row < ROWS; ++row)
            write_by_hand(by_hand, sample(row));
    }

    BenchStation bench;
    int by_hand = -1;
};
}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    LogRowBench bench;
    print_bench_table({bench.run()});
    return 0;
}
