#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

// Registers of many pixels at once.
namespace flash::render
{

/// Pixels that are computed side by side.
inline constexpr std::size_t kLanes = 64;
template <class T>
using Lanes = std::array<T, kLanes>;
template <class T>
using Quad = std::array<Lanes<T>, 4>;
using On = Lanes<std::uint8_t>;

/// A whole number of a register; 0 for what is none.
inline std::int32_t wholeOf(float value)
{
    constexpr float kMost = 2147483520.0F;
    return std::isnan(value) ? 0 : static_cast<std::int32_t>(std::clamp(value, -kMost, kMost));
}

/// 0 to 255 of a colour from 0 to 1.
inline std::uint32_t channelOf(float value)
{
    if (!(value > 0)) return 0; // NaN too
    return static_cast<std::uint32_t>(std::min(value, 1.0F) * 255.0F + 0.5F);
}

template <class T, class F>
void each(std::size_t channels, Quad<T>& a, const Quad<T>& b, F f)
{
    for (std::size_t c = 0; c < channels; ++c)
        for (std::size_t i = 0; i < kLanes; ++i) a[c][i] = f(a[c][i], b[c][i]);
}

} // namespace flash::render
