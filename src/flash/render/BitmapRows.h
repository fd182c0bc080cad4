#pragma once

#include "flash/render/Paint.h"

#include <cstddef>
#include <cstdint>

// Rows of bitmaps that are scaled or turned: the inner loops of BitmapPaint, in a version for AVX2 and one
// for any processor, which give the same pixels.
namespace flash::render
{

// Positions in a bitmap are 16.16 fixed point in 64 bits. The callers bound start and step so that 2^16
// steps, more than any surface is wide, cannot overflow.
constexpr int kPlaceBits = 16;

/// The pixel that stands for one beyond the border.
inline int placeWithin(std::int64_t at, int size, Edges edges)
{
    if (at >= 0 && at < size) return static_cast<int>(at);
    if (edges == Edges::Clamp) return at < 0 ? 0 : size - 1;
    const std::int64_t rest = at % size;
    return static_cast<int>(rest < 0 ? rest + size : rest);
}

/// Where the pixels of a row lie in the bitmap: pixel i at (u, v) + i (stepU, stepV).
struct BitmapRow {
    std::int64_t u = 0, v = 0, stepU = 0, stepV = 0;
    [[nodiscard]] BitmapRow from(std::size_t i) const
    {
        const auto n = static_cast<std::int64_t>(i);
        return {u + n * stepU, v + n * stepV, stepU, stepV};
    }
};

/// Writes `count` pixels of a row.
using BitmapLoop = void (*)(const PixelSource& source, Edges edges, const BitmapRow& row, std::size_t count,
                            std::uint32_t* to);

/// Nearest: the pixel that a place lies in. Smooth: the four pixels around it, weighed; whole numbers are the
/// middles of pixels then.
struct BitmapLoops {
    BitmapLoop nearest = nullptr, smooth = nullptr;
};

/// @returns the quickest that there are for this processor
BitmapLoops bitmapLoops();
/// @returns those for any processor
BitmapLoops plainBitmapLoops();
/// @returns those for AVX2; null where there is none
BitmapLoops wideBitmapLoops();

} // namespace flash::render
