#pragma once

#include "flash/swf/Geometry.h"
#include "flash/swf/Shape.h"

#include <cstdint>
#include <vector>

namespace flash::render
{

struct FlatPoint {
    float x = 0, y = 0;
};

/// A chain of straight lines that share their fills.
struct FlatRun {
    std::uint32_t first = 0, count = 0; ///< points of the layer
    std::uint16_t fill0 = 0, fill1 = 0; ///< as in swf::EdgeRun
};

/// A path that one line style strokes, put together from all runs that continue each other.
struct FlatStroke {
    std::uint16_t line = 0;             ///< number of the line style, from 1
    std::uint32_t first = 0, count = 0; ///< stroke points of the layer
};

struct StrokePoint {
    FlatPoint at;
    bool corner = true; ///< false: within a curve, where the outline goes on smoothly
};

struct FlatLayer {
    FlatPoint min, max; ///< corners of the rectangle around `points`
    std::vector<FlatPoint> points;
    std::vector<FlatRun> runs;
    std::vector<StrokePoint> strokePoints;
    std::vector<FlatStroke> strokes; ///< by line style
};

/// The outlines of a shape with its curves turned into lines, in shape space.
struct FlatShape {
    std::vector<FlatLayer> layers; ///< one for each of the shape's
    [[nodiscard]] std::size_t bytes() const;
};

/// How large shapes come out, in steps of the square root of two: what is flattened for one step serves all
/// matrices of that step.
/// @param matrix shape space to device pixels, finite
int scaleStep(const swf::Matrix& matrix);

/// Flattens so finely that at the given step lines are at most a tenth of a pixel from their curves.
FlatShape flatten(const swf::Shape& shape, int scaleStep);

} // namespace flash::render
