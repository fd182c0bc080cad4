#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Shape.h"

namespace flash::render
{

/// Whether nothing of what lies below a shape shows within a box of device pixels. Seen only for shapes of
/// few edges, as grounds are; others are taken to let something through.
[[nodiscard]] bool hidesBox(const swf::Shape& shape, const swf::Matrix& toDevice,
                            const swf::ColorTransform& color, const IntRect& box);

} // namespace flash::render
