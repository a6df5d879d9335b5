#pragma once

#include <QString>

/**
 * Gives what lies between the first `left` and the first `right` behind it.
 *
 * @return false without touching `middle` if either is empty or not found
 */
bool string_between(QString text, QString left, QString& middle, QString right);

/** Splits "a=b=c" into "a" and "b=c". False without touching the outputs if there is no delimiter. */
bool split_at_first(QString text, QString& before, QString delimiter, QString& after);

/** The text before the first delimiter; empty if there is none. */
QString string_before(QString text, QString delimiter);

/** Blanks in place of line breaks: for a file in which every line is a record. */
QString in_one_line(QString text);

/** Formats with a fixed number of decimals: round(1.005, 1) is "1.0". It rounds no number. */
QString round(double value, int decimals);

/** 1 gives "1st", 12 "12th", 22 "22nd". */
QString ordinal_string(int n);
