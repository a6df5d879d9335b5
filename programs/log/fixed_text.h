#pragma once

#include <QByteArray>

/** Appends 41.5 as "41.500" where three decimals are asked for; nothing for what is no finite number. */
void append_fixed(QByteArray& text, double value, int decimals);
