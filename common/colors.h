#pragma once

#include <QColor>

/** The program's colours. Constants of the compiler, so that other constants can be built from them. */
namespace Colors
{
inline constexpr QColor black(0, 0, 0);
inline constexpr QColor brown(87, 49, 5);
inline constexpr QColor red(255, 0, 0);
inline constexpr QColor orange(255, 127, 0);
inline constexpr QColor yellow(255, 255, 0);
inline constexpr QColor green(0, 127, 0);
inline constexpr QColor blue(0, 0, 255);
inline constexpr QColor violet(148, 0, 211);
inline constexpr QColor gray(134, 136, 138);
inline constexpr QColor white(255, 255, 255);
inline constexpr QColor pale_gray(240, 240, 240);
inline constexpr QColor KEST_RED(148, 36, 50);

/** Position n is digit n of the resistor colour code. */
inline constexpr QColor resistor_color_code[] = {
    black, brown, red, orange, yellow, green, blue, violet, gray, white,
};
}  // namespace Colors

/** Perceived brightness of a colour (linearised sRGB, IEC 61966-2-1), 0 black to 255 white. */
int grayscale_value(const QColor& color);
