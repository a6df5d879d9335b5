#pragma once

#include <QByteArray>

#include <cstring>

/**
 * The text of one row in the making, in a place of its own for all rows.
 *
 * It has room for the longest row that there is, numbers and a time; names do not belong here.
 */
class RowText
{
public:
    void clear()
    {
        length = 0;
    }

    void add(char character)
    {
        if (length < ROOM)
            characters[length++] = character;
    }

    void add(const char* text, int size)
    {
        const int fitting = qMin(size, ROOM - length);
        std::memcpy(characters + length, text, size_t(fitting));
        length += fitting;
    }

    void add(const char* text)
    {
        add(text, int(std::strlen(text)));
    }

    void add(const QByteArray& text)
    {
        add(text.constData(), text.size());
    }

    const char* data() const
    {
        return characters;
    }
    int size() const
    {
        return length;
    }
    QByteArray bytes() const
    {
        return QByteArray(characters, length);
    }

private:
    static constexpr int ROOM = 4000;  ///< twelve numbers of the most digits that there are

    char characters[ROOM];
    int length = 0;
};
