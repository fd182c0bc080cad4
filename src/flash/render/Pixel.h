#pragma once

#include "flash/swf/Geometry.h"

#include <cstdint>

// Arithmetic on single pixels, premultiplied 0xAARRGGBB.
namespace flash::render
{

constexpr std::uint32_t alphaOf(std::uint32_t pixel) { return pixel >> 24; }

/// value / 255, rounded; exact for 0..65535.
constexpr std::uint32_t div255(std::uint32_t value)
{
    const std::uint32_t t = value + 128;
    return (t + (t >> 8)) >> 8;
}

constexpr std::uint32_t packPixel(std::uint32_t a, std::uint32_t r, std::uint32_t g, std::uint32_t b)
{
    return a << 24 | r << 16 | g << 8 | b;
}

constexpr std::uint32_t premultiply(swf::Rgba c)
{
    return packPixel(c.a, div255(std::uint32_t{c.r} * c.a), div255(std::uint32_t{c.g} * c.a),
                     div255(std::uint32_t{c.b} * c.a));
}

/// Colours brighter than their alpha, which only damaged data holds, count as full.
constexpr swf::Rgba unpremultiply(std::uint32_t pixel)
{
    const std::uint32_t a = alphaOf(pixel);
    if (a == 0) return {0, 0, 0, 0};
    const auto channel = [a](std::uint32_t v) {
        const std::uint32_t plain = (v * 255 + a / 2) / a;
        return static_cast<std::uint8_t>(plain > 255 ? 255 : plain);
    };
    return {channel(pixel >> 16 & 0xFF), channel(pixel >> 8 & 0xFF), channel(pixel & 0xFF),
            static_cast<std::uint8_t>(a)};
}

/// All four channels times factor / 255, rounded.
constexpr std::uint32_t scale255(std::uint32_t pixel, std::uint32_t factor)
{
    std::uint32_t low = (pixel & 0x00FF00FF) * factor + 0x00800080;
    low = (low + (low >> 8 & 0x00FF00FF)) >> 8 & 0x00FF00FF;
    std::uint32_t high = (pixel >> 8 & 0x00FF00FF) * factor + 0x00800080;
    high = (high + (high >> 8 & 0x00FF00FF)) & 0xFF00FF00;
    return low | high;
}

/// All four channels times factor / 256, rounded; 256 keeps the pixel.
constexpr std::uint32_t scale256(std::uint32_t pixel, std::uint32_t factor)
{
    const std::uint32_t low = ((pixel & 0x00FF00FF) * factor + 0x00800080) >> 8 & 0x00FF00FF;
    const std::uint32_t high = ((pixel >> 8 & 0x00FF00FF) * factor + 0x00800080) & 0xFF00FF00;
    return low | high;
}

/// `source` over `below`.
constexpr std::uint32_t over(std::uint32_t source, std::uint32_t below)
{
    return source + scale255(below, 255 - alphaOf(source));
}

} // namespace flash::render
