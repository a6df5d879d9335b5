#include "common/number_row.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>

namespace
{
constexpr quint64 POWERS_OF_TEN[] = {1, 10, 100, 1000};
constexpr int MAX_DECIMALS = int(std::size(POWERS_OF_TEN)) - 1;
constexpr int FRACTION_BITS = 52;
constexpr int EXPONENT_OF_ONE = 1023;
constexpr quint64 HIDDEN_BIT = quint64(1) << FRACTION_BITS;

// From 2^52 on a double is a whole number, which is left to the toolkit.
constexpr auto TOO_LARGE = double(HIDDEN_BIT);

/**
 * The whole number next to value * 10^decimals, a half going up; exact, for 0 <= value < 2^52.
 *
 * A double is a whole number of 53 bits, shifted right. Times a thousand it still fits in 63 bits, so
 * that nothing is lost before the shift, and the bits shifted out decide alone.
 */
quint64 scaled(double value, int decimals)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    const int shift = EXPONENT_OF_ONE + FRACTION_BITS - int(bits >> FRACTION_BITS);
    // Less than a half: below 2^63 before the shift.
    if (shift > 63)
        return 0;
    const quint64 mantissa = (bits & (HIDDEN_BIT - 1)) | HIDDEN_BIT;
    const quint64 product = mantissa * POWERS_OF_TEN[decimals];
    return (product >> shift) + (product >> (shift - 1) & 1);
}
}  // namespace

void NumberRow::prepend_fixed(double value, int decimals)
{
    const bool negative_zero = value == 0.0 && std::signbit(value);
    // Written so that what is no number goes the toolkit's way too.
    const bool is_usual = std::fabs(value) < TOO_LARGE && !negative_zero;
    if (!is_usual || decimals < 0 || decimals > MAX_DECIMALS) {
        const QString text = QString::number(value, 'f', decimals);
        Q_ASSERT(text.size() <= begin - characters);
        begin -= text.size();
        std::memcpy(begin, text.utf16(), size_t(text.size()) * sizeof *begin);
        return;
    }
    const quint64 number = scaled(std::fabs(value), decimals);
    // Half as wide where it will do, as it nearly always does: division takes the time here.
    if (number <= UINT_MAX)
        prepend_digits(quint32(number), decimals);
    else
        prepend_digits(number, decimals);
    if (value < 0.0)
        prepend('-');
}

template <typename Number> void NumberRow::prepend_digits(Number number, int decimals)
{
    char16_t* at = begin;
    for (int i = 0; i < decimals; ++i, number /= 10)
        *--at = char16_t('0' + number % 10);
    if (decimals != 0)
        *--at = '.';
    do {
        *--at = char16_t('0' + number % 10);
        number /= 10;
    } while (number != 0);
    begin = at;
}

QString fixed_decimal(double value, int decimals)
{
    NumberRow number;
    number.prepend_fixed(value, decimals);
    return number.view().toString();
}
