#pragma once

#include <QString>

/** A piece of a log as a message shows it: in quotes, on one line, a long one cut. */
QString quoted(const QString& text);

/** Where the value behind the first ":" begins, blanks left out; counted from 1. */
int value_column(const QString& line);

/** Where the field begins, counted from 1; `index` counts the fields from 0. */
int field_column(const QString& line, QChar separator, int index);

/** "'abc' is no number" */
QString no_number(const QString& text);

/** "3 columns instead of 4 or 5 in a discharge"; an empty line is called one. */
QString wrong_columns(const QString& line, int separators, const char* expected);

/** "nothing is known by the name 'Colour'" */
QString unknown_name(const QString& name);
