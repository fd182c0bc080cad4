#include "flash/video/PlanarPixels.h"

#include <algorithm>

namespace flash::video
{
namespace
{

constexpr int kBits = 16, kOne = 1 << kBits, kHalf = kOne / 2;
constexpr int kMiddle = 128; ///< the sample of no colour
constexpr int kLumaSteps = 219, kColorSteps = 224, kAllSteps = 255;

std::uint32_t channel(int value, int most)
{
    return static_cast<std::uint32_t>(std::clamp((value + kHalf) >> kBits, 0, most));
}

} // namespace

ColorMatrix ColorMatrix::of(const int (&coefficients)[4], bool fullRange)
{
    const auto scaled = [&](int value) {
        return fullRange ? static_cast<int>(std::int64_t{value} * kColorSteps / kAllSteps) : value;
    };
    return {fullRange ? kOne : kOne * kAllSteps / kLumaSteps,
            scaled(coefficients[0]),
            scaled(coefficients[2]),
            scaled(coefficients[3]),
            scaled(coefficients[1]),
            fullRange ? 0 : 16};
}

void makePixels(const PlanarRow& row, const ColorMatrix& matrix, std::span<std::uint32_t> pixels)
{
    for (std::size_t x = 0; x < pixels.size(); ++x) {
        const int y = matrix.luma * (row.luma[x] - matrix.black);
        const int u = row.u[x / 2] - kMiddle, v = row.v[x / 2] - kMiddle;
        const int alpha = row.alpha != nullptr ? row.alpha[x] : kAllSteps;
        pixels[x] = static_cast<std::uint32_t>(alpha) << 24 | channel(y + matrix.redByV * v, alpha) << 16 |
                    channel(y - matrix.greenByU * u - matrix.greenByV * v, alpha) << 8 |
                    channel(y + matrix.blueByU * u, alpha);
    }
}

} // namespace flash::video
