#include "support/modal_answer.h"
#include "support/simulated_link.h"
#include "support/station_bench.h"
#include "support/test_clock.h"
#include "support/wire.h"

#include "common/date_time.h"
#include "config/settings.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTemporaryDir>

#include <array>
#include <cstdio>
#include <ctime>
#include <malloc.h>
#include <memory>
#include <random>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
// Of the sanitizer's library, whose header the compiler does not bring.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

// Six stations that test hour after hour in the time of the program's clock, with faults strewn in.

namespace
{
constexpr int STATIONS = 6;
constexpr int HOUR = 3600;            // seconds
constexpr int FAULT_EVERY = 400;      // seconds, of one station or another
constexpr int FAULT_LASTS = 60;       // seconds
constexpr int CYCLES = 2;             // of a test
constexpr int ENDLESS_CYCLES = 9999;  // of the first station, whose points are never given up
constexpr double CAPACITY = 2.0;      // amp-hours

const char* const FAULTS[] = {
    "garbage 5",      "six-fields 5",     "empty-fields 3",  "letters 5",       "nan 2",
    "no-id 5",        "wrong-letter 5 X", "lone-cr 1",       "lost-line-end 1", "nul 5",
    "invalid-utf8 5", "split-bytes 3",    "merge 5",         "silence 3",       "silence 30",
    "burst 5",        "ignore-next 1",    "late-commands 3", "restart 2",       "bootloader",
    "no-load",        "trip-protection",
};

const QString BROKEN = qEnvironmentVariable("KEST_ENDURANCE_BROKEN");

double processor_seconds()
{
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/** Bytes that somebody still has; the sanitizer keeps books of its own. */
qint64 bytes_in_use()
{
#ifdef __SANITIZE_ADDRESS__
    return qint64(__sanitizer_get_current_allocated_bytes());
#else
    return qint64(::mallinfo2().uordblks);
#endif
}

int open_files()
{
    return int(QDir("/proc/self/fd").entryList(QDir::NoFilter).size());
}

/** A station on its cable, that begins a further test when one is done, and the count of its rows. */
class Bench
{
public:
    Bench(const TestClock& test_clock, int number)
        : clock(test_clock),
          instrument(new Kestrometer(wire.port_name())),
          station(nullptr, instrument),
          link(wire, station, pack(), number),
          endless(number == 1)
    {
        instrument->set_state(Off);
        station.show();
        station.max_charge_time = HOUR;
        station.internal_resistance_test_interval_ah = 0.1;
        station.detect_full_charge = true;
        station.prompt_to_discharge = false;
        QObject::connect(instrument, &Kestrometer::sig_measurement, &station, [this] { count(); });
    }

    void live_a_second()
    {
        link.take_commands();
        link.advance(1);
        blink = !blink;
        station.slot_blink(blink);
        link.take_commands();
        if (station.phase == PHASE_IDLE || station.phase == PHASE_DONE)
            begin_test();
        else if (station.phase == PHASE_READY_FOR_DISCHARGE)
            station.findChild<QPushButton*>("pbStartSkip")->click();
        note_state();
    }

    void end_test()
    {
        if (station.data_log == nullptr)
            return;
        const QByteArray text = read_log();
        rows += rows_of(text);
        wrong += rows_of(text) == expected ? 0 : 1;
        expected = 0;
        station.findChild<QPushButton*>("pbNewTest")->click();
    }

    /** Points that the station keeps. */
    qint64 points() const
    {
        qint64 sum = station.charge_voltage_series.points.size();
        for (const TestCycle* cycle : station.cycles)
            sum += qint64(cycle->voltage_vs_amphours.points.size()) +
                   cycle->current_vs_amphours.points.size() +
                   cycle->internal_resistance.points.size();
        return sum;
    }

    qint64 rows = 0;
    int wrong = 0;
    int tests = 0;
    qint64 late_rows = 0;  ///< that tell another time than the clock

private:
    static PackModel pack()
    {
        PackModel made;
        made.capacity_ah = CAPACITY;
        made.state_of_charge = 1.0;
        return made;
    }

    void begin_test()
    {
        end_test();
        if (instrument->id == -1)
            return;
        station.profile_name = "Pack";
        station.serial_number = QString("%1-%2").arg(instrument->id).arg(++tests);
        station.number_of_cycles = endless ? ENDLESS_CYCLES : CYCLES;
        station.update_ui();
        station.serial_number_edited = true;
        station.findChild<QPushButton*>("pbStartSkip")->click();
    }

    /** What the next line is to give. */
    Sample samples() const
    {
        return station.data_log != nullptr ? traits_of(station.phase).sample : Sample::None;
    }

    void note_state()
    {
        sampled = samples();
        leg = station.leg_start_time;
    }

    /** Behind the station's own slot: the line has its row by now, if it asked for one. */
    void count()
    {
        if (sampled == Sample::Charge ||
            (sampled == Sample::Discharge && instrument->current > 0.01)) {
            ++expected;
            const double seconds = double(leg.msecsTo(clock.now)) / 1000.0;
            late_rows += last_row().startsWith(QByteArray::number(seconds, 'f', 1) + ',') ? 0 : 1;
        }
        note_state();
    }

    QByteArray read_log() const
    {
        QFile file(station.data_log->fileName());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return BROKEN == "loses rows" ? file.readAll().chopped(20) : file.readAll();
    }

    /** The row in front of any head that this line has brought as well. */
    QByteArray last_row() const
    {
        QFile file(station.data_log->fileName());
        if (!file.open(QIODevice::ReadOnly))
            return {};
        file.seek(std::max<qint64>(0, file.size() - 2048));
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (int i = lines.size() - 2; i >= 0; --i)
            if (is_row(lines[i]))
                return lines[i];
        return {};
    }

    static bool is_row(const QByteArray& line)
    {
        return !line.isEmpty() && (std::isdigit(uchar(line[0])) != 0 || line[0] == '-') &&
               line.contains(',');
    }

    static qint64 rows_of(const QByteArray& text)
    {
        qint64 sum = 0;
        for (const QByteArray& line : text.split('\n'))
            sum += is_row(line) ? 1 : 0;
        return sum;
    }

    const TestClock& clock;
    Wire wire;
    Kestrometer* instrument;

public:
    TestStation station;
    SimulatedLink link;

private:
    bool endless;
    bool blink = false;
    Sample sampled = Sample::None;
    QDateTime leg;
    qint64 expected = 0;
};

/** Faults that come and go, one at a time, on one of the cables. */
class Weather
{
public:
    void move_on(std::vector<std::unique_ptr<Bench>>& benches, int second)
    {
        if (second % FAULT_EVERY == 0) {
            struck = chance() % benches.size();
            benches[struck]->link.set_fault(FAULTS[chance() % std::size(FAULTS)]);
            ++faults;
        } else if (second % FAULT_EVERY == FAULT_LASTS) {
            benches[struck]->link.set_fault("clear");
        }
    }

    int faults = 0;

private:
    std::mt19937 chance{16};
    size_t struck = 0;
};

/** What is measured at the end of an hour. */
struct HourFigures
{
    double seconds_per_line = 0.0;  ///< of the processor
    qint64 heap = 0;                ///< bytes in use
    qint64 points = 0;
    int files = 0;
};

HourFigures figures(const std::vector<std::unique_ptr<Bench>>& benches, double seconds,
                    qint64 lines)
{
    HourFigures made;
    made.seconds_per_line = seconds / double(lines);
    made.heap = bytes_in_use();
    for (const auto& bench : benches)
        made.points += bench->points();
    made.files = open_files();
    return made;
}

qint64 lines_of(const std::vector<std::unique_ptr<Bench>>& benches)
{
    qint64 lines = 0;
    for (const auto& bench : benches)
        lines += bench->link.lines;
    return lines;
}

HourFigures live_an_hour(std::vector<std::unique_ptr<Bench>>& benches, TestClock& clock,
                         Weather& weather, std::vector<QByteArray>& leaked)
{
    const double before = processor_seconds();
    const qint64 lines = lines_of(benches);
    for (int second = 0; second < HOUR; ++second) {
        clock.advance_seconds(1);
        weather.move_on(benches, second);
        for (const auto& bench : benches)
            bench->live_a_second();
        // What nobody takes: the record of what the instruments were told.
        for (const auto& bench : benches)
            bench->link.commands.clear();
        if (BROKEN == "leaks")
            leaked.emplace_back(10000, 'x');
    }
    return figures(benches, processor_seconds() - before, lines_of(benches) - lines);
}
}  // namespace

/** soak HOURS: a line an hour "seconds a line, bytes in use, points, files", then the rows' figures. */
int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    const QTemporaryDir folder;
    load_test_settings(folder.path());
    TestClock clock;
    ModalAnswer answers;
    std::vector<std::unique_ptr<Bench>> benches;
    for (int number = 1; number <= STATIONS; ++number)
        benches.push_back(std::make_unique<Bench>(clock, number));
    Weather weather;
    std::vector<QByteArray> leaked;
    for (int hour = 0; hour < QByteArray(argv[1]).toInt(); ++hour) {
        const HourFigures made = live_an_hour(benches, clock, weather, leaked);
        std::printf("hour %.9f %lld %lld %d\n", made.seconds_per_line, made.heap, made.points,
                    made.files);
        std::fflush(stdout);
    }
    qint64 rows = 0;
    qint64 late = 0;
    int wrong = 0;
    int tests = 0;
    for (const auto& bench : benches) {
        answers.click(QMessageBox::Ok);
        bench->end_test();
        rows += bench->rows;
        late += bench->late_rows;
        wrong += bench->wrong;
        tests += bench->tests;
    }
    std::printf("tests %d rows %lld late %lld wrong %d faults %d lines %lld\n", tests, rows, late,
                wrong, weather.faults, lines_of(benches));
    return 0;
}
