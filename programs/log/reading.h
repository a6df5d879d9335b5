#pragma once

#include <QByteArray>

/** What a row in the exact form of the application says of how it follows another. */
struct Reading
{
    double seconds = 0.0;
    double amp_hours = 0.0;
    double amps = 0.0;
    bool known = false;
};

Reading charge_reading(const QByteArray& row);
Reading discharge_reading(const QByteArray& row);

/** Amp-hours grow by no more than the current makes in that time, and fall only where time does. */
bool continues(const Reading& from, const Reading& to);
