#pragma once

#include <cmath>

// Channels of colours, 0..1, as they are kept (sRGB) and as parts of the light.
namespace flash::render
{

inline double toLinearLight(double value)
{
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

inline double fromLinearLight(double value)
{
    return value <= 0.0031308 ? value * 12.92 : 1.055 * std::pow(value, 1 / 2.4) - 0.055;
}

} // namespace flash::render
