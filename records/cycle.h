#pragma once

#include <QtGlobal>

/** Mean and spread of the resistances of a cycle. */
struct Resistance
{
    qint64 count = 0;
    double mean = 0.0;     ///< milliohms
    double spread = 0.0;   ///< milliohms, standard deviation of the sample; 0 below two
    double lowest = 0.0;   ///< milliohms
    double highest = 0.0;  ///< milliohms

    void add(double milliohms);

private:
    double squares = 0.0;  ///< of the distances from the mean
};

/** What a discharge delivered. */
struct Cycle
{
    int section = 0;  ///< place in the sections of its log
    double amp_hours = 0.0;
    double watt_hours_loaded = 0.0;  ///< as the application shows them after loading
    double watt_hours_live = 0.0;    ///< as measured
    double watt_hours_error = 0.0;   ///< how far the rounding of the log may move them, either way
    double watt_hours_held = 0.0;    ///< of the live ones, what was counted over held readings
    qint64 negative_resistances = 0;
    Resistance resistance;
};
