#pragma once

#include <QLine>
#include <QList>

class Axis;
class Series;

/** The resistances of one discharge and the currents at which they were taken; neither is owned. */
struct ResistanceReadings
{
    const Series* resistance;  ///< x amp-hours, y milliohms
    const Series* current;     ///< x amp-hours, y amps
};

/**
 * The upper end of the highest error bar; 0 if there is none.
 *
 * A reading is uncertain by 150 milliohms at 1 amp and by less at more. Without a current taken at
 * the very same amp-hours it has no bar.
 */
double highest_error_bar_end(const QList<ResistanceReadings>& cycles);

/** One vertical line for each bar, in the pixels of the two axes. */
QList<QLine> error_bars(const QList<ResistanceReadings>& cycles, const Axis& x_axis,
                        const Axis& y_axis);
