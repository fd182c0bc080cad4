#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace flash::video
{

/// How the colours of a picture were made; the multipliers in 1/65536.
struct ColorMatrix {
    int luma, redByV, greenByU, greenByV, blueByU;
    int black; ///< the luma of black
    /// @param coefficients for samples of 16 to 235, in the order that swscale gives them in: red by V, blue
    ///                     by U, green by U, green by V, the latter two taken off
    /// @param fullRange    the samples go from 0 to 255
    static ColorMatrix of(const int (&coefficients)[4], bool fullRange);
};

/// Samples with colour at half the size both ways.
struct PlanarRow {
    const std::uint8_t *luma, *u, *v;
    const std::uint8_t* alpha; ///< null: opaque
};

/// Makes a row of pixels: 0xAARRGGBB. Each colour sample stands for four pixels as it is, not blended into
/// those beside it. Colours are coded premultiplied; where coding made one exceed its alpha it is cut.
void makePixels(const PlanarRow& row, const ColorMatrix& matrix, std::span<std::uint32_t> pixels);

} // namespace flash::video
