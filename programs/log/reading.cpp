#include "log/reading.h"

#include <QList>

#include <cmath>

Reading charge_reading(const QByteArray& row)
{
    return {row.left(row.indexOf(',')).toDouble(), 0.0, 0.0, true};
}

Reading discharge_reading(const QByteArray& row)
{
    const QList<QByteArray> fields = row.split(',');
    return {fields[0].toDouble(), fields[1].toDouble(), fields[3].toDouble(), true};
}

bool continues(const Reading& from, const Reading& to)
{
    constexpr double MARGIN = 1.5;
    constexpr double DIGITS = 0.002;  // amp-hours
    const double hours = (to.seconds - from.seconds) / 3600.0;
    const double most = MARGIN * qMax(std::fabs(from.amps), std::fabs(to.amps)) * hours;
    const double grown = to.amp_hours - from.amp_hours;
    return grown >= qMin(0.0, most) - DIGITS && grown <= qMax(0.0, most) + DIGITS;
}
