#pragma once

#include <cstdint>

namespace flash::render
{

/// Blue, green, red and alpha from 0 to 1, in the order of their bytes in a pixel of 0xAARRGGBB. Only ever
/// handed on by reference: how such a vector is passed depends on the processor that is compiled for.
using GpuColor = float __attribute__((vector_size(16)));

[[gnu::always_inline]] inline void spread(GpuColor& color, std::uint32_t pixel)
{
    using Words = std::uint32_t __attribute__((vector_size(16)));
    using Halves = std::uint16_t __attribute__((vector_size(16)));
    using Bytes = std::uint8_t __attribute__((vector_size(16)));
    using Ints = std::int32_t __attribute__((vector_size(16)));
    constexpr Bytes kNone{};
    const auto bytes = reinterpret_cast<Bytes>(Words{pixel, 0, 0, 0});
    const auto halves = reinterpret_cast<Halves>(
        __builtin_shufflevector(bytes, kNone, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    const auto words = reinterpret_cast<Ints>(
        __builtin_shufflevector(halves, reinterpret_cast<Halves>(kNone), 0, 8, 1, 9, 2, 10, 3, 11));
    color = __builtin_convertvector(words, GpuColor) / 255;
}

/// @param color each between 0 and 1; rounded
[[gnu::always_inline]] inline std::uint32_t gathered(const GpuColor& color)
{
    using Ints = std::int32_t __attribute__((vector_size(16)));
    const Ints whole = __builtin_convertvector(color * 255 + 0.5F, Ints);
    return static_cast<std::uint32_t>(whole[0]) | static_cast<std::uint32_t>(whole[1]) << 8U |
           static_cast<std::uint32_t>(whole[2]) << 16U | static_cast<std::uint32_t>(whole[3]) << 24U;
}

} // namespace flash::render
