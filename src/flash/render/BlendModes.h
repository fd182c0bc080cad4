#pragma once

#include "flash/render/Surface.h"
#include "flash/swf/Movie.h"

#include <cstddef>
#include <cstdint>

namespace flash::render
{

/// Blends a row of premultiplied pixels onto what is below. Normal and Layer lay over.
/// @param coverage 0..255 for each pixel, null for all
void blendRow(swf::BlendMode mode, std::uint32_t* below, const std::uint32_t* source,
              const std::uint8_t* coverage, std::size_t count);

} // namespace flash::render
