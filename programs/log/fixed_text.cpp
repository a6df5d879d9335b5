#include "log/fixed_text.h"

#include <cmath>

namespace
{
constexpr double POWERS[] = {1.0, 10.0, 100.0, 1e3, 1e4, 1e5, 1e6};

/** Puts the digits in front of `end`, at least one behind the point and one before it. */
template <typename Number> char* put_digits(char* end, Number left, int decimals)
{
    char* at = end;
    for (int place = 0; left > 0 || place <= decimals; ++place) {
        if (place == decimals && decimals > 0)
            *--at = '.';
        *--at = char('0' + left % 10);
        left /= 10;
    }
    return at;
}
}  // namespace

void append_fixed(RowText& text, double value, int decimals)
{
    constexpr double MOST = 1e14;    // whole numbers up to there are exact, with room to spare
    constexpr double SHORT = 4.0e9;  // what is smaller is divided in half of the time
    if (!std::isfinite(value))
        return;
    const double scaled = std::fabs(value) * POWERS[decimals];
    if (!(scaled < MOST)) {
        text.add(QByteArray::number(value, 'f', decimals));
        return;
    }
    auto whole = qint64(scaled);
    whole += scaled - double(whole) >= 0.5 ? 1 : 0;
    char digits[24];
    char* const end = digits + sizeof digits;
    char* at = scaled < SHORT ? put_digits(end, quint32(whole), decimals)
                              : put_digits(end, quint64(whole), decimals);
    if (value < 0.0 && whole > 0)
        *--at = '-';
    text.add(at, int(end - at));
}
