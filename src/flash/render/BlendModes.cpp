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

// Each mode where both are there, times both alphas: B(plain source, plain below) * sa * ba.
int multiply(const Channel& c) { return product(c.s, c.b); }
int screen(const Channel& c) { return product(c.s, c.ba) + product(c.b, c.sa) - product(c.s, c.b); }
int lighten(const Channel& c) { return std::max(product(c.s, c.ba), product(c.b, c.sa)); }
int darken(const Channel& c) { return std::min(product(c.s, c.ba), product(c.b, c.sa)); }
int difference(const Channel& c) { return std::abs(product(c.s, c.ba) - product(c.b, c.sa)); }
int add(const Channel& c) { return std::min(product(c.s, c.ba) + product(c.b, c.sa), product(c.sa, c.ba)); }
int subtract(const Channel& c) { return std::max(product(c.b, c.sa) - product(c.s, c.ba), 0); }
int invert(const Channel& c) { return product(c.sa, c.ba - c.b); }
int hardLight(const Channel& c)
{
    if (2 * c.s <= c.sa) return std::min(2 * product(c.s, c.b), 255);
    return std::max(product(c.sa, c.ba) - 2 * product(c.sa - c.s, std::max(c.ba - c.b, 0)), 0);
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
        const int value = product(c.s, 255 - ba) + product(c.b, 255 - sa) + Mode(c);
        result |= static_cast<std::uint32_t>(std::clamp(value, 0, alpha)) << shift;
    }
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
        const int value = product(c.b, 255 - sa) + invert(c);
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
    case BlendMode::Add: return &separable<add>;
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
