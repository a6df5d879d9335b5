#pragma once

#include "charts/series.h"

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
 * Where a log goes, without a copy in between.
 *
 * What a reader has understood stays there, also when it refuses a later line.
 */
struct LogTarget
{
    QString& profile_name;
    QString& serial_number;
    int& number_of_cycles;
    int& max_charge_time;  ///< seconds
    bool& detect_full_charge;
    double& low_voltage_cutoff;
    bool& prompt_to_discharge;
    double& final_voltage;
    bool& measure_internal_resistance;
    double& internal_resistance_test_interval_ah;

    std::function<CycleTarget()> begin_cycle;  ///< appends an empty cycle
};
