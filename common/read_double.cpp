#include "common/read_double.h"

#include <QString>

namespace
{
// Up to fifteen digits and up to 10^15 are exact in a double, so that one division rounds correctly.
constexpr int MAX_EXACT_DIGITS = 15;

constexpr double POWERS_OF_TEN[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/** Reads "-12.34" and the like; false for every other form, which is then the toolkit's to judge. */
bool read_plain_number(const QChar* at, const QChar* end, double& value)
{
    const bool negative = at != end && *at == '-';
    if (negative)
        ++at;
    // One more than digits: the point.
    if (end - at > MAX_EXACT_DIGITS + 1)
        return false;
    qint64 digits = 0;
    const QChar* const first = at;
    const QChar* point = nullptr;
    for (; at != end; ++at) {
        const unsigned digit = unsigned(at->unicode()) - '0';
        if (digit <= 9)
            digits = digits * 10 + digit;
        else if (*at == '.' && point == nullptr && at != first)
            point = at;
        else
            return false;
    }
    const int decimals = point == nullptr ? 0 : int(end - point) - 1;
    const int count = int(end - first) - (point == nullptr ? 0 : 1);
    const bool ends_in_point = point != nullptr && decimals == 0;
    if (count == 0 || count > MAX_EXACT_DIGITS || ends_in_point)
        return false;
    value = double(digits) / POWERS_OF_TEN[decimals];
    if (negative)
        value = -value;
    return true;
}
}  // namespace

double read_double(const QChar* text, int length, bool& ok)
{
    double value = 0.0;
    ok = read_plain_number(text, text + length, value);
    return ok ? value : QString(text, length).toDouble(&ok);
}
