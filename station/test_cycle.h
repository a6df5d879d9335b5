#pragma once

#include "charts/series.h"

#include <QCheckBox>
#include <QDateTime>
#include <QString>

/** One discharge of a test: its curves and totals. The charge that follows has no record. */
class TestCycle
{
public:
    TestCycle();

    /** Mean of the measured resistances, as "123 mΩ"; "? mΩ" when there is none. */
    QString avg_internal_resistance_string() const;

    /**
     * The voltage at two thirds of the delivered amp-hours, where a charge is down to some 30 percent.
     *
     * @return false without touching `voltage` when the cycle has fewer than 600 samples
     */
    bool calc_30_percent_charge_voltage(float& voltage) const;

    /** One more point for each curve of readings, live or loaded, at what was delivered so far. */
    void add_reading(double voltage, double current)
    {
        voltage_vs_amphours.add(amp_hours, voltage);
        current_vs_amphours.add(amp_hours, current);
    }

    QDateTime start_time;
    Series voltage_vs_amphours;  ///< x amp-hours, y volts
    Series current_vs_amphours;  ///< x amp-hours, y amps
    Series internal_resistance;  ///< x amp-hours, y milliohms
    double amp_hours = 0.0;      ///< delivered so far
    double watt_hours = 0.0;     ///< delivered so far
    QCheckBox checkbox;          ///< the cycle's tick above the charts
};

/** A resistance as the panel shows it: whole milliohms with the ohm sign, "? mΩ" without a value. */
QString milliohms_string(bool known, double milliohms);
