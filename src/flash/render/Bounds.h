#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Geometry.h"

namespace flash::render
{

/// All six numbers are finite and of a size that products of them stay finite.
bool isUsable(const swf::Matrix& matrix);

/// The device pixels that the mapped rectangle touches, saturated to about a thousand million; empty when
/// something is not finite.
IntRect boundsOf(const swf::Matrix& toDevice, double xMin, double yMin, double xMax, double yMax);

} // namespace flash::render
