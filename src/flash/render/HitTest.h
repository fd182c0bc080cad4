#pragma once

#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <memory>

namespace flash::render
{

class RenderCache;

/// Whether a point lies on a fill or a stroke of the shape. Transparency does not matter: a fill of alpha 0
/// is hit like any other, and so is a missing bitmap's.
/// @param point     shape space, twips
/// @param hairlineTwips the width that hairlines and thinner strokes have on the screen, in shape space
bool shapeContains(const swf::Shape& shape, swf::Point point, double hairlineTwips = swf::kTwipsPerPixel);

/// The same for a shape that is asked about again: the lines that its curves become are kept as long as it
/// lives.
bool shapeContains(const std::shared_ptr<const swf::Shape>& shape, swf::Point point, RenderCache& cache,
                   double hairlineTwips = swf::kTwipsPerPixel);

} // namespace flash::render
