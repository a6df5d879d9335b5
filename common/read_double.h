#pragma once

#include <QChar>

/** What QString::toDouble gives for these characters, bit for bit, without a string of their own. */
double read_double(const QChar* text, int length, bool& ok);
