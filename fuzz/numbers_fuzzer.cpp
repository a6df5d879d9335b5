#include "common/parse_int.h"
#include "common/plain_double.h"

#include <QString>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace
{
void require(bool condition)
{
    if (!condition)
        std::abort();
}

/** To see that a wrong number is noticed. */
bool is_broken()
{
    static const bool broken = !qEnvironmentVariableIsEmpty("KEST_ENDURANCE_BROKEN");
    return broken;
}

/** A plain number is the one that the toolkit reads, to the bit. */
void check_double(const QString& text)
{
    double value = 0.5;
    const QChar* const begin = text.constData();
    const QChar* const end = read_plain_double(begin, begin + text.size(), value);
    if (end == nullptr) {
        require(value == 0.5);
        return;
    }
    bool ok = false;
    const double whole = QString(begin, int(end - begin)).toDouble(&ok);
    const double wanted = is_broken() ? whole + 1.0 : whole;
    require(ok && std::memcmp(&value, &wanted, sizeof value) == 0);
}

/** The prefixes of all radices that a text may have, and what stands behind them. */
int literal_radix(QString& text)
{
    for (const auto& [letter, radix] : {std::pair('b', 2), std::pair('o', 8), std::pair('x', 16)}) {
        if (text.startsWith(QString("0") + letter, Qt::CaseInsensitive)) {
            text.remove(0, 2);
            return radix;
        }
    }
    return 10;
}

void check_int(const QString& text)
{
    int value = 77;
    const bool accepted = parse_int(text, value);
    QString digits = text;
    const int radix = literal_radix(digits);
    bool ok = false;
    const qlonglong number = digits.toLongLong(&ok, radix);
    require(accepted == (ok && number == int(number)));
    require(value == (ok ? int(quint32(number)) : 77));
    for (const int given : {0, 1, 2, 36, 37})
        parse_int(text, value, given);
}
}  // namespace

/** A text: as a number with a fraction, and as a whole one. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), int(size));
    check_double(text);
    check_int(text);
    return 0;
}
