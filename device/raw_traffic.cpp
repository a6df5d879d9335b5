#include "device/raw_traffic.h"

#include <algorithm>

namespace
{
bool is_fit_for_display(QChar character)
{
    const ushort code = character.unicode();
    return code == '\t' || (code >= 32 && code < 128);
}
}  // namespace

QString sanitised_text(const QString& text)
{
    if (std::all_of(text.begin(), text.end(), is_fit_for_display))
        return text;
    QString sanitised;
    sanitised.reserve(text.size() + 16);
    for (const QChar character : text) {
        if (is_fit_for_display(character))
            sanitised += character;
        else
            sanitised += "[0x" + QString::number(character.unicode(), 16).toUpper() + ']';
    }
    return sanitised;
}

QString hex_text(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}
