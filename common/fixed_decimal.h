#pragma once

#include <QString>
#include <QVarLengthArray>

/** A row in the making, on the stack unless it grows long. */
using TextBuffer = QVarLengthArray<QChar, 96>;

/**
 * Appends `value` with this many decimals, digit for digit as QString::number(value, 'f', decimals).
 *
 * Made for the numbers of logs and labels, which are small and have three decimals at most.
 */
void append_fixed(TextBuffer& text, double value, int decimals);

/** The number alone: 41.5 with two decimals gives "41.50". */
QString fixed_decimal(double value, int decimals);
