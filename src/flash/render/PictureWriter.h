#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Shape.h"

#include <cstdint>
#include <vector>

namespace flash::render
{

enum class PngEffort : std::uint8_t { Small, Fast };

/// A part of a picture as a PNG file.
/// @param area within the picture, not empty
/// @returns nothing when there is no memory for it
std::vector<std::uint8_t> encodePng(const swf::Bitmap& picture, const IntRect& area, PngEffort effort);

/// A part of a picture as a JPEG file; what is transparent lies on black.
/// @param quality 1 to 100
std::vector<std::uint8_t> encodeJpeg(const swf::Bitmap& picture, const IntRect& area, int quality);

} // namespace flash::render
