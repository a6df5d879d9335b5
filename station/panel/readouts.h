#pragma once

#include "station/phase.h"

#include <QString>

#include <optional>
#include <tuple>
#include <utility>

class QDateTime;
class TestStation;

/**
 * The readouts of a panel, and what they tell as the values behind their texts.
 *
 * A line of telemetry changes few of them. With many stations each label lies far away in memory: those
 * whose value stays are not even looked at.
 */
class Readouts
{
public:
    explicit Readouts(const TestStation& shown_station);

    /** Whatever differs from what was shown last. */
    void show_changes();
    /** Everything, as if nothing had been shown yet. */
    void show_all();
    /** To be called where the current's help has been put there by others. */
    void forget_current_help();

private:
    void show_name_warnings();
    void enable_start();
    void show_identity();
    void show_cycle();
    void show_internal_resistance();
    void show_totals();
    void show_phase();
    void show_voltage();
    void show_current_or_charge_time(const QDateTime& now);
    void show_current();
    void show_charge_time(const QDateTime& now);
    void assign_current_help(int id);
    void show_elapsed_time(const QDateTime& now);

    /** Unset where it is not known. */
    struct Shown
    {
        std::optional<QString> serial_number;               ///< behind the warnings about it
        std::optional<QString> profile_name;                ///< likewise
        std::optional<int> number;                          ///< the instrument's, or the preview's
        std::optional<std::pair<int, int>> cycle;           ///< its place, and how many are wanted
        std::optional<int> resistances;                     ///< points behind the mean
        std::optional<std::tuple<Phase, int, bool>> phase;  ///< place of the cycle, log open
        std::optional<qint64> charge_time;                  ///< seconds, in place of a current
        std::optional<std::pair<bool, qint64>> elapsed_time;  ///< log open, seconds
        std::optional<int> current_help;                      ///< the tooltip of the current
        // Digits; null where not known.
        QString amp_hours;
        QString watt_hours;
        QString voltage;
        QString current;
    };

    const TestStation& station;
    Shown shown;
};
