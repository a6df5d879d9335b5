#pragma once

#include <QByteArray>

/**
 * Cuts a growing text into lines, whatever the pieces in which it comes. What is kept does not grow with
 * the text: of a line over LONGEST_LINE the rest is dropped.
 */
class LineCutter
{
public:
    static constexpr int LONGEST_LINE = 65536;  ///< bytes

    /** Hands each whole line, without its end, to `take`, a function of a QByteArray. */
    template <typename Take> void feed(const QByteArray& piece, Take take);

    /** The last line has not come to its end. */
    bool has_rest() const
    {
        return !rest.isEmpty();
    }

private:
    void keep(const char* begin, int size);

    QByteArray rest;
};

template <typename Take> void LineCutter::feed(const QByteArray& piece, Take take)
{
    int begin = 0;
    for (int end = piece.indexOf('\n'); end >= 0; end = piece.indexOf('\n', begin)) {
        keep(piece.constData() + begin, end - begin);
        take(rest);
        rest.clear();
        begin = end + 1;
    }
    keep(piece.constData() + begin, piece.size() - begin);
}
