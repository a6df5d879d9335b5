#pragma once

#include <QByteArray>
#include <QList>

/** One line on its way to the wire, still in its seven fields, so that faults can get at them. */
struct TelemetryLine
{
    enum Field
    {
        NameField,
        VoltageField,
        CurrentField,
        TemperatureField,
        StatusField,
        IdField,
        StateField,
    };

    TelemetryLine() = default;
    /** A healthy line: volts to 0.01 V, amps to 0.1 A. */
    TelemetryLine(double volts, double amps, int id, char letter);

    QByteArray bytes() const;

    QList<QByteArray> fields;
    QByteArray end = "\r\n";
};

/** Fixed decimals as the sensor gives them, "0.0" for -0.04 with one decimal: the sensor has no minus zero. */
QByteArray sensor_number(double value, int decimals);
