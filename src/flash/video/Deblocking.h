#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace flash::video
{

/// One plane of a picture, 8 bits to the sample.
struct Plane {
    std::uint8_t* samples = nullptr;
    int width = 0, height = 0;
    std::ptrdiff_t stride = 0; ///< bytes from row to row
};

/// The quantizer (1 to 31) that the block was coded with whose first sample stands at x, y of a plane.
using Quantizers = std::function<int(int x, int y)>;

/// Evens out the seams between the blocks of 8 by 8 samples that a picture was coded in; the coarser the
/// quantizer, the larger the steps that count as seams.
/// @source ITU-T H.263, annex J. Players run it behind the decoder: the next picture builds on what was
/// coded.
void smoothSeams(const Plane& plane, const Quantizers& quantizers);

} // namespace flash::video
