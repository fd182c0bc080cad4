#pragma once

#include "flash/render/ShaderRun.h"

#include <array>

// What kernels read of their images.
namespace flash::render
{

/// Red, green, blue and alpha, or as many numbers as the image has.
using Texel = std::array<float, 4>;

/// Beyond the edges: as at the edge, but nothing beyond those of a surface.
Texel texelAt(const ShaderImage& image, int x, int y);
/// Of the four texels around a place; the middle of the first one is at 0.5.
Texel sampleLinear(const ShaderImage& image, float px, float py);
/// The whole number at or below; far off for what has no such.
int floorOf(float value);

} // namespace flash::render
