#pragma once

#include "charts/series.h"
#include "station/test_parameters.h"

#include <QDateTime>
#include <QString>

#include <functional>

/** Where one discharge of a log goes: a cycle's curves and totals, none of them owned. */
struct CycleTarget
{
    QDateTime* start_time = nullptr;
    Series* voltage_vs_amphours = nullptr;
    Series* current_vs_amphours = nullptr;
    Series* internal_resistance = nullptr;  ///< milliohms, though the logs hold ohms
    double* amp_hours = nullptr;
    double* watt_hours = nullptr;
};

/**
 * Where a log goes, its rows without a copy in between.
 *
 * What a reader has understood stays there, also when it refuses a later line; what a log does not
 * tell stays as it was.
 */
struct LogTarget
{
    QString profile_name;
    QString serial_number;
    TestParameters parameters;

    std::function<CycleTarget()> begin_cycle;  ///< appends an empty cycle
};
