#pragma once

#include <QtGlobal>

/** One reading of a section, in the units that people use. */
struct Row
{
    qint64 line = 0;       ///< of the file, counted from 1
    double seconds = 0.0;  ///< since the section began
    double volts = 0.0;
    double amps = 0.0;        ///< delivered; a charge's are not known
    double amp_hours = 0.0;   ///< delivered in the cycle so far
    double watt_hours = 0.0;  ///< delivered in the cycle so far, as measured live
    double milliohms = 0.0;
    bool has_resistance = false;
};
