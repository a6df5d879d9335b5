#pragma once

#include "config/refusal.h"

#include <QMap>
#include <QString>
#include <QStringList>

class QIODevice;

/** A named set of test parameters, to be applied to a panel in one step. */
struct BatteryProfile
{
    bool on_disk = false;            ///< read from the file, or written to it
    QString description;             ///< its name, and its key among the profiles
    QString serial_number_template;  ///< what a battery's serial number starts from
    int number_of_cycles = 1;
    int max_charge_time_sec = 10800;  ///< seconds; the file has whole hours
    double low_voltage_cutoff = 0.0;  ///< volts
    double final_voltage = 0.0;       ///< volts
    bool detect_full_charge = false;
    bool prompt_to_discharge = false;
    bool measure_internal_resistance = true;
    double ir_test_interval_ah = 0.5;  ///< amp-hours
};

/**
 * All profiles of the process, shared by every station: `battery_profiles.txt` in the settings
 * directory. Callers look up, insert and remove in the map and then save().
 */
class BatteryProfiles
{
public:
    BatteryProfiles() = default;

    static QString get_filename();

    /**
     * Adds what the file holds to what is in memory; without a file, a sample profile and a file.
     *
     * @return false, which the operator is not told, at the first line that cannot be understood;
     *         what stood before that line stays in memory
     */
    static bool load();
    /** The same for what `device` holds, without a word to anybody: where and why it stops. */
    static bool read(QIODevice& device, Refusal& refusal);
    /** Writes the file in place. False if it cannot be opened. */
    static bool save();

    /** Sorted, in whatever case. */
    static QStringList get_all_descriptions();

    /** By description. The records are owned; the map outlives every static object on purpose. */
    static QMap<QString, BatteryProfile*>& profiles;
};
