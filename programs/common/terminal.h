#pragma once

#include <QString>

#include <cstdio>

enum class Colour
{
    Plain,
    Red,
    Yellow,
    Green
};

/** In colour where `stream` is a terminal and NO_COLOR is not set; the words tell all the same. */
QString coloured(const QString& text, Colour colour, std::FILE* stream);

/** On one line, without what a terminal might obey: names may hold anything. */
QString shown(QString text);

/** "kest-log: TEXT" with a line end, on standard error. */
void tell(const QString& text);

/** As it stands, on standard error. */
void tell_bytes(const QByteArray& bytes);

/** The result, on standard output. False if it takes no more, as a full disk or a closed pipe. */
bool put(const QString& text);
