#pragma once

#include "station/test_parameters.h"

#include <QDateTime>
#include <QString>

class NumberRow;

/** The texts of the two logs, to the byte: what a test writes, apart from when and where. */
namespace LogFormat
{
/** What the head of a log section shows. */
struct Section
{
    int number = 0;
    QDateTime start;
    TestParameters parameters;  ///< the interval is written only if resistance is measured
};

/** The last line of a section's head, without its end. */
inline constexpr char CHARGE_TITLES[] = "Time (s),Voltage (V)";
inline constexpr char DISCHARGE_TITLES[] =
    "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)";

/** The three lines at the head of a data log. */
QString file_header(const QString& battery_name, const QString& serial_number);

/** Head and column titles of a charge; the software version stands in charges only. */
QString charge_section_header(const Section& section);

/** Head and column titles of a discharge. */
QString discharge_section_header(const Section& section);

/** One row of a charge into an empty `row`: seconds since the section began, volts. */
void put_charge_row(NumberRow& row, double time, double voltage);

/**
 * One row of a discharge into an empty `row`: seconds since the section began, amp-hours so far, volts,
 * amps.
 *
 * @param ir ohms, although the column's title says milliohms; left out when it is exactly 0.0
 */
void put_discharge_row(NumberRow& row, double time, double amp_hours, double voltage,
                       double current, double ir);

/** One line of the event log. */
QString event_line(const QDateTime& time, const QString& text);
}  // namespace LogFormat
