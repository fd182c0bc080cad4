#pragma once

#include <cstddef>
#include <cstdint>

namespace browser
{

/// Three bytes a pixel. Row 0 is the first in memory.
template <class Byte>
struct PixelRows {
    Byte* bits;
    int width, height;
    std::size_t lineBytes;
};

/// Scales `source` to the size of `target`. With W x H the target's and w x h the source's size, target pixel
/// (x, y) lies at (x * ((w - 1) / W), y * ((h - 1) / H)) of the source, in double precision; the integer
/// parts name the upper left of four source pixels, the fractions blend them: first upper with lower, rounded
/// to whole numbers, then left with right. Rounding is to nearest, halves to even. The two rows that are
/// blended count in memory order. Where the source has one row or column, that one stands for its neighbour.
/// Vectorised where the processor allows; the result is that of resampleBilinearScalar() to the bit.
void resampleBilinear(const PixelRows<const std::uint8_t>& source, const PixelRows<std::uint8_t>& target);

/// The same, one value after the other: what the formula says.
void resampleBilinearScalar(const PixelRows<const std::uint8_t>& source,
                            const PixelRows<std::uint8_t>& target);

} // namespace browser
