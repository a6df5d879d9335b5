#include "common/colors.h"

#include <cmath>

namespace
{
double linearised(int channel)
{
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double encoded(double linear)
{
    return linear <= 0.0031308 ? linear * 12.92
                               : 1.055 * std::pow(linear, 0.4166666666666667) - 0.055;
}
}  // namespace

int grayscale_value(const QColor& color)
{
    const double sum = 0.212655 * linearised(color.red()) + 0.715158 * linearised(color.green()) +
                       0.072187 * linearised(color.blue());
    return int(encoded(sum) * 255.0 + 0.5);
}
