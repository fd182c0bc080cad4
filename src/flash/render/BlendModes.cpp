#include "flash/render/BlendModes.h"

#include "flash/render/Compose.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <array>

namespace flash::render
{
namespace
{

using swf::BlendMode;

struct Channel {
    int s = 0, b = 0;   ///< source and below, premultiplied
    int sa = 0, ba = 0; ///< their alphas
};

int product(int a, int b) { return static_cast<int>(div255(static_cast<std::uint32_t>(a * b))); }

// Each mode where both are there, times both alphas, B(plain source, plain below) * sa * ba, in units of 1 /
// 255: rounded once, at the end.
int multiply(const Channel& c) { return c.s * c.b; }
int screen(const Channel& c) { return c.s * c.ba + c.b * c.sa - c.s * c.b; }
int lighten(const Channel& c) { return std::max(c.s * c.ba, c.b * c.sa); }
int darken(const Channel& c) { return std::min(c.s * c.ba, c.b * c.sa); }
int difference(const Channel& c) { return std::abs(c.s * c.ba - c.b * c.sa); }
int subtract(const Channel& c) { return std::max(c.b * c.sa - c.s * c.ba, 0); }
int hardLight(const Channel& c)
{
    if (2 * c.s <= c.sa) return 2 * c.s * c.b;
    return c.sa * c.ba - 2 * (c.sa - c.s) * std::max(c.ba - c.b, 0);
}
int overlay(const Channel& c) { return hardLight({c.b, c.s, c.ba, c.sa}); }

template <int (*Mode)(const Channel&)>
std::uint32_t separable(std::uint32_t source, std::uint32_t below)
{
    const int sa = static_cast<int>(alphaOf(source)), ba = static_cast<int>(alphaOf(below));
    const int alpha = sa + ba - product(sa, ba);
    std::uint32_t result = static_cast<std::uint32_t>(alpha) << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        const Channel c{static_cast<int>(source >> shift & 0xFF), static_cast<int>(below >> shift & 0xFF), sa,
                        ba};
        // Where only one of them is there it shows as it is.
        const int sum = std::max(c.s * (255 - ba) + c.b * (255 - sa) + Mode(c), 0);
        const int value = static_cast<int>(div255(static_cast<std::uint32_t>(sum)));
        result |= static_cast<std::uint32_t>(std::min(value, alpha)) << shift;
    }
    return result;
}

// The one mode that knows no shares: light and alpha add up until they are full.
std::uint32_t add(std::uint32_t source, std::uint32_t below)
{
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8)
        result |= std::min((source >> shift & 0xFF) + (below >> shift & 0xFF), 255U) << shift;
    return result;
}

// Inverts what is below to the degree of the source's alpha; the source's colour does not matter, and where
// nothing is below nothing appears.
std::uint32_t inverted(std::uint32_t source, std::uint32_t below)
{
    const int sa = static_cast<int>(alphaOf(source)), ba = static_cast<int>(alphaOf(below));
    std::uint32_t result = below & 0xFF000000;
    for (int shift = 0; shift < 24; shift += 8) {
        const Channel c{0, static_cast<int>(below >> shift & 0xFF), sa, ba};
        const int value = product(c.b, 255 - sa) + product(c.sa, c.ba - c.b);
        result |= static_cast<std::uint32_t>(std::clamp(value, 0, ba)) << shift;
    }
    return result;
}

std::uint32_t keepAlpha(std::uint32_t source, std::uint32_t below)
{
    return scale255(below, alphaOf(source));
}
std::uint32_t erase(std::uint32_t source, std::uint32_t below)
{
    return scale255(below, 255 - alphaOf(source));
}

using PixelFunction = std::uint32_t (*)(std::uint32_t source, std::uint32_t below);

PixelFunction functionOf(BlendMode mode)
{
    switch (mode) {
    case BlendMode::Normal:
    case BlendMode::Layer: return nullptr;
    case BlendMode::Multiply: return &separable<multiply>;
    case BlendMode::Screen: return &separable<screen>;
    case BlendMode::Lighten: return &separable<lighten>;
    case BlendMode::Darken: return &separable<darken>;
    case BlendMode::Difference: return &separable<difference>;
    case BlendMode::Add: return &add;
    case BlendMode::Subtract: return &separable<subtract>;
    case BlendMode::Invert: return &inverted;
    case BlendMode::Alpha: return &keepAlpha;
    case BlendMode::Erase: return &erase;
    case BlendMode::Overlay: return &separable<overlay>;
    case BlendMode::HardLight: return &separable<hardLight>;
    }
    return nullptr; // values from damaged files
}

std::uint32_t between(std::uint32_t from, std::uint32_t to, std::uint32_t part)
{
    return scale255(from, 255 - part) + scale255(to, part);
}

} // namespace

void blendRow(BlendMode mode, std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
              std::size_t count)
{
    const PixelFunction function = functionOf(mode);
    if (function == nullptr) {
        if (coverage == nullptr)
            composePixels(below, source, count);
        else
            composePixels(below, source, coverage, count);
        return;
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t blended = function(source[i], below[i]);
        below[i] = coverage == nullptr ? blended : between(below[i], blended, coverage[i]);
    }
}

} // namespace flash::render
