#pragma once

#include "log/row_text.h"

/** Adds 41.5 as "41.500" where three decimals are asked for; nothing for what is no finite number. */
void append_fixed(RowText& text, double value, int decimals);
