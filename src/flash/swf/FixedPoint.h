#pragma once

#include "flash/swf/Geometry.h"

#include <cmath>

// Numbers from scripts as the genuine player keeps them among the styles of shapes: cut, not rounded.
namespace flash::swf
{

inline double cutTo(double value, double steps)
{
    const double cut = std::trunc(value * steps) / steps;
    return std::isfinite(cut) ? cut : 0;
}

/// A matrix of gradients: factors in 16.16 fixed point, places in whole twips.
inline Matrix inFixedPoint(const Matrix& m)
{
    constexpr double kSteps = 65536;
    return {cutTo(m.a, kSteps), cutTo(m.b, kSteps), cutTo(m.c, kSteps),
            cutTo(m.d, kSteps), cutTo(m.tx, 1),     cutTo(m.ty, 1)};
}

/// A focal point, -1 to 1, in 8.8 fixed point.
inline double focalInFixedPoint(double value)
{
    constexpr double kSteps = 256;
    return cutTo(value < -1 ? -1 : value > 1 ? 1 : value, kSteps);
}

} // namespace flash::swf
