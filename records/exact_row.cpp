#include "records/exact_row.h"

namespace
{
bool is_digit(QChar character)
{
    return unsigned(character.unicode()) - '0' <= 9;
}

/** Goes past a number like "-12.50" with just these decimals and no zero in front. Null if there is none. */
const QChar* skip_fixed(const QChar* at, const QChar* end, int decimals)
{
    if (at != end && *at == '-')
        ++at;
    const QChar* const first = at;
    while (at != end && is_digit(*at))
        ++at;
    const bool whole = at - first == 1 || (at - first > 1 && *first != '0');
    if (!whole || end - at <= decimals || *at++ != '.')
        return nullptr;
    for (; decimals > 0; --decimals)
        if (!is_digit(*at++))
            return nullptr;
    return at;
}

/** Numbers of so many decimals with commas between, from `at` to the end. */
template <int COUNT> bool is_row(const QChar* at, const QChar* end, const int (&decimals)[COUNT])
{
    for (int i = 0; i < COUNT; ++i) {
        if (i > 0 && (at == end || *at++ != ','))
            return false;
        at = skip_fixed(at, end, decimals[i]);
        if (at == nullptr)
            return false;
    }
    return at == end;
}
}  // namespace

bool is_exact_charge_row(QStringView row)
{
    constexpr int DECIMALS[] = {1, 2};
    return is_row(row.begin(), row.end(), DECIMALS);
}

bool is_exact_discharge_row(QStringView row)
{
    constexpr int DECIMALS[] = {1, 3, 2, 2};
    constexpr int WITH_RESISTANCE[] = {1, 3, 2, 2, 3};
    return is_row(row.begin(), row.end(), DECIMALS) ||
           is_row(row.begin(), row.end(), WITH_RESISTANCE);
}
