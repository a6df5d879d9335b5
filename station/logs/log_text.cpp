#include "station/logs/log_text.h"

namespace
{
constexpr int LONGEST = 40;
}

QString quoted(const QString& text)
{
    QString shown = text.size() > LONGEST ? text.left(LONGEST - 1) + QChar(0x2026) : text;
    for (QChar& character : shown)
        if (!character.isPrint())
            character = QChar(QChar::ReplacementCharacter);
    return "'" + shown + "'";
}

int value_column(const QString& line)
{
    int at = line.indexOf(':') + 1;
    while (at < line.size() && line[at].isSpace())
        ++at;
    return at + 1;
}

int field_column(const QString& line, QChar separator, int index)
{
    int at = 0;
    for (; index > 0; --index)
        at = line.indexOf(separator, at) + 1;
    return at + 1;
}

QString no_number(const QString& text)
{
    return quoted(text) + " is no number";
}

QString wrong_columns(const QString& line, int separators, const char* expected)
{
    if (line.isEmpty())
        return "an empty line";
    const QString columns =
        separators == 0 ? "1 column" : QString("%1 columns").arg(separators + 1);
    return QString("%1 instead of %2").arg(columns, expected);
}

QString unknown_name(const QString& name)
{
    return "nothing is known by the name " + quoted(name);
}
