#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace flash::render
{

/// Bytes of an image, `channels` of them to the pixel, rows without gap. Outside all is 0.
struct Plane {
    int width = 0, height = 0, channels = 1;
    std::vector<std::uint8_t> bytes;
    [[nodiscard]] std::size_t rowBytes() const
    {
        return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels);
    }
    [[nodiscard]] std::uint8_t* row(int y) { return bytes.data() + static_cast<std::size_t>(y) * rowBytes(); }
    [[nodiscard]] const std::uint8_t* row(int y) const
    {
        return bytes.data() + static_cast<std::size_t>(y) * rowBytes();
    }
};

/// A blur's width where a pixel of the stage is `scale` pixels: one pixel is no blur at any scale.
double scaledBlur(double extent, double scale);
/// The extent of a box blur, checked: 1 means no blur at all.
double blurExtent(double extent);
/// The number of passes, checked.
int blurPasses(int passes);
/// How far one pass of such a box reaches to either side, in pixels.
int blurReach(double extent);

/// Each pass replaces each pixel by the mean of the box around its centre that is `extentX` by `extentY`
/// pixels large; pixels that the box cuts count by their part.
void boxBlur(Plane& plane, double extentX, double extentY, int passes);

} // namespace flash::render
