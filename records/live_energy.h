#pragma once

/**
 * The watt-hours of a discharge as the running test measured them: the sum over its rows of volts times
 * the amp-hours since the row before.
 *
 * The amp-hours hold the live time steps, which rows alone do not: a line that was no reading gives no
 * row, and shortens the step behind it. Amp-hours are logged in thousandths, so each may be off by
 * half of one: summed by parts, that moves the result by at most 0.0005 times the last volts and all
 * changes of the volts.
 */
class LiveEnergy
{
public:
    void add(double amp_hours, double volts);

    double watt_hours() const
    {
        return sum;
    }
    double error_bound() const;

private:
    double sum = 0.0;
    double amp_hours_before = 0.0;
    double volts_before = 0.0;
    double changes = 0.0;  ///< volts
    bool empty = true;
};
