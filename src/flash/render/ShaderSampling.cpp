#include "flash/render/ShaderSampling.h"

#include <algorithm>
#include <cmath>

namespace flash::render
{

namespace
{

Texel texelOf(std::uint32_t pixel)
{
    constexpr float kScale = 1.0F / 255.0F;
    return {static_cast<float>(pixel >> 16U & 0xFFU) * kScale,
            static_cast<float>(pixel >> 8U & 0xFFU) * kScale, static_cast<float>(pixel & 0xFFU) * kScale,
            static_cast<float>(pixel >> 24U) * kScale};
}

} // namespace

Texel texelAt(const ShaderImage& image, int x, int y)
{
    if (image.width <= 0 || image.height <= 0) return {};
    if (image.surface.pixels != nullptr) {
        if (x < 0 || y < 0 || x >= image.width || y >= image.height) return {};
    } else {
        x = std::clamp(x, 0, image.width - 1);
        y = std::clamp(y, 0, image.height - 1);
    }
    const auto at =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) + static_cast<std::size_t>(x);
    if (image.bitmap) {
        // A script may have thrown the picture away since.
        if (at >= image.bitmap->pixels.size()) return {};
        const std::uint32_t pixel = image.bitmap->pixels[at];
        return texelOf(image.bitmap->opaque ? pixel | 0xFF000000U : pixel);
    }
    if (image.surface.pixels != nullptr) return texelOf(image.surface.row(y)[x]);
    Texel texel{};
    const auto channels = static_cast<std::size_t>(image.channels);
    for (std::size_t i = 0; i < channels && at * channels + i < image.numbers.size(); ++i)
        texel[i] = image.numbers[at * channels + i];
    return texel;
}

int floorOf(float value)
{
    constexpr float kFar = 1 << 24;
    return std::isnan(value) ? -1 : static_cast<int>(std::floor(std::clamp(value, -kFar, kFar)));
}

Texel sampleLinear(const ShaderImage& image, float px, float py)
{
    // Just beyond the edges it is the same as anywhere there.
    const auto near = [](float place, int size) {
        return std::isnan(place) ? -1.0F : std::clamp(place - 0.5F, -1.0F, static_cast<float>(size));
    };
    const float x = near(px, image.width), y = near(py, image.height);
    const int left = floorOf(x), top = floorOf(y);
    const float u = x - static_cast<float>(left), v = y - static_cast<float>(top);
    const Texel a = texelAt(image, left, top), b = texelAt(image, left + 1, top),
                c = texelAt(image, left, top + 1), d = texelAt(image, left + 1, top + 1);
    Texel result;
    for (std::size_t i = 0; i < 4; ++i)
        result[i] = (a[i] * (1 - u) + b[i] * u) * (1 - v) + (c[i] * (1 - u) + d[i] * u) * v;
    return result;
}

} // namespace flash::render
