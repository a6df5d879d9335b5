#pragma once

#include <QString>

/**
 * Reads a whole number: "31" and "0x1F" give 31, "010" gives 10, "0x" and "12abc" fail.
 *
 * Without a radix the prefixes 0b, 0o and 0x, in either case, choose 2, 8 and 16.
 *
 * @return false without touching `value` if it is no number; false with its low 32 bits in `value`
 *         if it exceeds 32 bits; false for a radix below 2
 */
bool parse_int(QString text, int& value, int radix = -1);
