#include "station/test_cycle.h"

namespace
{
const QString MILLIOHM = QString(" m") + QChar(0x2126);
}

TestCycle::TestCycle()
{
    checkbox.setCheckState(Qt::Checked);
}

QString TestCycle::avg_internal_resistance_string() const
{
    return milliohms_string(!internal_resistance.points.isEmpty(), internal_resistance.avg_y());
}

bool TestCycle::calc_30_percent_charge_voltage(float& voltage) const
{
    if (voltage_vs_amphours.points.size() < 600)
        return false;
    const float two_thirds = float(amp_hours * 2 / 3.0);
    const int found = voltage_vs_amphours.binary_search(double(two_thirds));
    voltage = float(voltage_vs_amphours.points.at(found < 0 ? ~found : found).y());
    return true;
}

QString milliohms_string(bool known, double milliohms)
{
    return (known ? QString::number(milliohms, 'f', 0) : QString("?")) + MILLIOHM;
}
