#pragma once

#include <QString>
#include <QStringView>

/**
 * A row of numbers in the making, written from its end: the last digit of a number is known first.
 *
 *     NumberRow row;
 *     row.prepend('\n');
 *     row.prepend_fixed(41.52, 2);
 *     row.prepend(',');
 *     row.prepend_fixed(0.9, 1);
 *     row.view();  // "0.9,41.52\n"
 */
class NumberRow
{
public:
    NumberRow() = default;
    NumberRow(const NumberRow&) = delete;
    NumberRow& operator=(const NumberRow&) = delete;

    void prepend(char character)
    {
        *--begin = uchar(character);
    }

    /**
     * A number with this many decimals, digit for digit as QString::number(value, 'f', decimals).
     *
     * Numbers of logs and labels are quick: not huge, and with three decimals at most.
     */
    void prepend_fixed(double value, int decimals);

    /** What is there so far; valid as long as the row is. */
    QStringView view() const
    {
        return QStringView(begin, characters + ROOM);
    }

private:
    template <typename Number> void prepend_digits(Number number, int decimals);

    // For five of the longest numbers, which have 309 digits before the point.
    static constexpr int ROOM = 2048;
    char16_t characters[ROOM];  // not set on purpose: only what lies behind `begin` counts
    char16_t* begin = characters + ROOM;
};

/** The number alone: 41.5 with two decimals gives "41.50". */
QString fixed_decimal(double value, int decimals);
