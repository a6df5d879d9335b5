#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <memory>

class Kestrometer;
class TestStation;

/** Settings of their own for a bench, so that the user's are neither read nor written. */
void use_bench_settings(const QString& directory);

/** The tooltips of the panels; a window loads them itself. */
void load_bench_help();

/** Opens the logs and takes the test to its first discharge, as the operator would by two clicks. */
void begin_discharge(TestStation& station, const QString& name, const QString& serial_number);

/**
 * A station in the middle of a discharge, its panel shown, its instrument on a port that cannot be
 * opened: lines come out of the buffer in which the port's bytes would have been put.
 *
 * A second goes by with each line, on top of the real clock, which is asked as ever.
 */
class BenchStation
{
public:
    explicit BenchStation(const QString& serial_number);
    ~BenchStation();
    BenchStation(const BenchStation&) = delete;
    BenchStation& operator=(const BenchStation&) = delete;

    /** One line through receive_data to update_ui, without layout and paint. */
    void receive_line();
    /** Whatever layout and painting the labels have asked for. */
    static void lay_out_and_paint();

    QTemporaryDir folder;
    std::unique_ptr<TestStation> station;
    Kestrometer* instrument = nullptr;  ///< the station's

private:
    int line_number = 0;
};
