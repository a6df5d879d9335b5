#pragma once

#include "station/phase.h"

#include <QString>

#include <optional>
#include <tuple>
#include <utility>

/**
 * What the panel's readouts tell, as the values behind their texts; unset where it is not known.
 *
 * A line of telemetry changes few of them. With many stations each label lies far away in memory: those
 * whose value stays are not even looked at.
 */
struct ShownReadouts
{
    std::optional<QString> serial_number;                 ///< behind the warnings about it
    std::optional<QString> profile_name;                  ///< likewise
    std::optional<int> number;                            ///< the instrument's, or the preview's
    std::optional<std::pair<int, int>> cycle;             ///< its place, and how many are wanted
    std::optional<int> resistances;                       ///< points behind the mean
    std::optional<std::tuple<Phase, int, bool>> phase;    ///< place of the cycle, log open
    std::optional<qint64> charge_time;                    ///< seconds, in place of a current
    std::optional<std::pair<bool, qint64>> elapsed_time;  ///< log open, seconds
    std::optional<int> current_help;                      ///< the tooltip of the current
    // Digits; null where not known.
    QString amp_hours;
    QString watt_hours;
    QString voltage;
    QString current;
};
