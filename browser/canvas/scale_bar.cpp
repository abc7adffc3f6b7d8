#include "scale_bar.h"

#include <cmath>

scale_bar bar_for(double scale, double pixel_um, int longest)
{
    const double screen_per_um = scale / pixel_um;
    const double most = longest / screen_per_um;
    const double power = std::pow(10, std::floor(std::log10(most)));
    const double length = most >= 5 * power ? 5 * power : most >= 2 * power ? 2 * power : power;
    return {length, static_cast<int>(std::lround(length * screen_per_um))};
}
