#include "bench_station.h"

#include "common/date_time.h"
#include "config/settings.h"
#include "config/tool_tips.h"
#include "device/kestrometer.h"
#include "station/test_station.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <array>

namespace
{
constexpr int DIFFERENT_LINES = 512;

// Milliseconds by which the lines received so far have moved the clock.
qint64 clock_offset = 0;

/** What the real clock does, later by the offset. */
QDateTime bench_clock()
{
    return Time::local_time(QDateTime::currentMSecsSinceEpoch() + clock_offset);
}

/** A pack of 40 V under 10 A, with the noise and the resolution of the instrument. */
QString telemetry_line(int number)
{
    const double voltage = 41.0 - 0.001 * number + 0.01 * (number * 7 % 5);
    const double current = 9.8 + 0.1 * (number * 5 % 4);
    return QString("x\t%1\t%2\tx\tx\tID=7\tD\r\n").arg(voltage, 0, 'f', 2).arg(current, 0, 'f', 1);
}

const QString& line_at(int number)
{
    static const std::array<QString, DIFFERENT_LINES> lines = [] {
        std::array<QString, DIFFERENT_LINES> made;
        for (int i = 0; i < DIFFERENT_LINES; ++i)
            made[size_t(i)] = telemetry_line(i);
        return made;
    }();
    return lines[size_t(number % DIFFERENT_LINES)];
}
}  // namespace

void use_bench_settings(const QString& directory)
{
    qputenv("XDG_DATA_HOME", directory.toLocal8Bit());
    if (!Settings::load())
        qFatal("The settings of the bench cannot be made.");
    Settings::set_log_dir(directory);
    Settings::set_pdf_dir(directory);
    // The main window loads them anew.
    if (!Settings::save())
        qFatal("The settings of the bench cannot be saved.");
}

void load_bench_help()
{
    if (ToolTips::tooltips.isEmpty())
        ToolTips::load(":/help.html");
}

void begin_discharge(TestStation& station, const QString& name, const QString& serial_number)
{
    station.profile_name = name;
    station.serial_number = serial_number;
    // Without resistance tests, which would need an instrument that obeys.
    station.measure_internal_resistance = false;
    if (!station.begin_log())
        qFatal("The logs of the bench cannot be made.");
    station.set_phase(PHASE_CHARGING, "User clicked 'Start'.");
    station.set_phase(PHASE_DISCHARGING, "User clicked 'Skip'");
}

BenchStation::BenchStation(const QString& serial_number)
{
    use_bench_settings(folder.path());
    load_bench_help();
    Time::set_clock(bench_clock);
    instrument = new Kestrometer("no such port");
    station = std::make_unique<TestStation>(nullptr, instrument);
    station->show();
    receive_line();
    begin_discharge(*station, "Pack A", serial_number);
    receive_line();
    // The window is exposed, and from now on every change is painted.
    QCoreApplication::processEvents();
}

BenchStation::~BenchStation()
{
    Time::set_clock({});
}

void BenchStation::receive_line()
{
    clock_offset += 1000;
    instrument->receive_buffer += line_at(line_number++);
    QMetaObject::invokeMethod(instrument, "receive_data", Qt::DirectConnection);
}

void BenchStation::lay_out_and_paint()
{
    QCoreApplication::sendPostedEvents();
}
