#pragma once

#include <QChar>

namespace Unicode
{
/** Stands between a number and its unit. */
inline constexpr QChar thin_space(0x2009);
}  // namespace Unicode
