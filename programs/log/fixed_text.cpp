#include "log/fixed_text.h"

#include <cmath>

void append_fixed(QByteArray& text, double value, int decimals)
{
    constexpr double POWERS[] = {1.0, 10.0, 100.0, 1e3, 1e4, 1e5, 1e6};
    constexpr double MOST = 1e14;  // whole numbers up to there are exact, with room to spare
    if (!std::isfinite(value))
        return;
    const double scaled = std::round(std::fabs(value) * POWERS[decimals]);
    if (!(scaled < MOST)) {
        text += QByteArray::number(value, 'f', decimals);
        return;
    }
    char digits[24];
    char* at = digits + sizeof digits;
    quint64 left = quint64(scaled);
    for (int place = 0; left > 0 || place <= decimals; ++place) {
        if (place == decimals && decimals > 0)
            *--at = '.';
        *--at = char('0' + left % 10);
        left /= 10;
    }
    if (value < 0.0 && scaled > 0.0)
        *--at = '-';
    text.append(at, int(digits + sizeof digits - at));
}
