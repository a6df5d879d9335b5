#include "simulator/telemetry_line.h"

TelemetryLine::TelemetryLine(double volts, double amps, int id, char letter)
    :  // Nobody reads the first, the fourth and the fifth field: a name, degrees Celsius, a status.
      fields{"KEST", sensor_number(volts, 2),        sensor_number(amps, 1), "25.0",
             "0",    "ID=" + QByteArray::number(id), QByteArray(1, letter)}
{
}

QByteArray TelemetryLine::bytes() const
{
    return fields.join('\t') + end;
}

QByteArray sensor_number(double value, int decimals)
{
    const QByteArray text = QByteArray::number(value, 'f', decimals);
    return text.toDouble() == 0.0 ? QByteArray::number(0.0, 'f', decimals) : text;
}
