#include "common/parse_int.h"

#include <limits>

namespace
{
int radix_of_prefix(const QString& text)
{
    if (text.size() < 2 || text[0] != '0')
        return 10;
    switch (text[1].unicode()) {
    case 'b':
    case 'B':
        return 2;
    case 'o':
    case 'O':
        return 8;
    case 'x':
    case 'X':
        return 16;
    default:
        return 10;
    }
}
}  // namespace

bool parse_int(QString text, int& value, int radix)
{
    if (radix == -1) {
        radix = radix_of_prefix(text);
        if (radix != 10)
            text.remove(0, 2);
    }
    // The toolkit knows no digits beyond 36.
    if (radix < 2 || radix > 36)
        return false;
    bool ok = false;
    const qlonglong number = text.toLongLong(&ok, radix);
    if (!ok)
        return false;
    value = static_cast<int>(static_cast<quint32>(number));
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}
