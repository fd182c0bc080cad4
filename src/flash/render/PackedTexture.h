#pragma once

#include "flash/render/GpuTexture.h"

#include <cstdint>
#include <span>

namespace flash::render
{

enum class Unpacking : std::uint8_t {
    Done,
    Damaged,  ///< no such file, or one that ends too early
    Mismatch, ///< of another size than the texture, or with faces where it has none
    Foreign   ///< packed as only some graphics cards, or a photograph's codec, would read it
};

/// Fills a texture from a file of textures packed for graphics cards ("ATF"), levels that are missing
/// excepted. Of its kinds those are read that hold blocks of S3 compression (DXT1, DXT5) as they are.
/// @param bytes big-endian lengths, little-endian blocks of 4 by 4 pixels, the faces one after the other
/// @source the ATF file format specification; the S3TC chapters of the Khronos data format specification
[[nodiscard]] Unpacking unpackTexture(std::span<const std::uint8_t> bytes, GpuTexture& texture);

} // namespace flash::render
