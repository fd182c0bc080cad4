#pragma once

#include "flash/swf/Shape.h"

#include <cstddef>
#include <cstdint>

// Rows of gradients: from a place on the device to a colour of the ramp. The inner loops of GradientPaint, in
// a version for AVX2 and one for any processor, which give the same colours.
namespace flash::render
{

constexpr int kRampSize = 256;

/// Linear: along the ramp. Radial, Focal: by the distance from the middle or the focal point.
enum class GradientForm { Linear, Radial, Focal };

/// What the pixels of a row are looked at with: pixel i at start + i step, in single precision.
struct GradientRow {
    float startX = 0,
          startY = 0; ///< linear: an entry of the ramp, and nothing; else a place in the unit circle
    float stepX = 0, stepY = 0;
    float focal = 0; ///< of focal ones: how far the focal point lies from the middle, within (-1, 1)
};

/// Pixels are counted from a border of so many on the device, whichever is looked at first: what a row looks
/// like does not depend on where it is begun.
constexpr int kGradientBlock = 256;

/// Inner loops for a kind of gradient. Both take kRampSize colours, and pixels `first` to `first + count - 1`
/// of a row, within kGradientBlock.
struct GradientLoops {
    /// Writes their colours.
    void (*fill)(const std::uint32_t* ramp, const GradientRow& row, std::size_t first, std::size_t count,
                 std::uint32_t* to) = nullptr;
    /// Lays their colours over what is there, as far as they are covered. Null where one after the other is
    /// as quick.
    /// @param coverage 0..255; may be read, not used, for up to seven pixels beyond
    void (*lay)(const std::uint32_t* ramp, const GradientRow& row, std::size_t first,
                const std::uint8_t* coverage, std::size_t count, std::uint32_t* to) = nullptr;
};

/// @returns the quickest that there are for this processor
GradientLoops gradientLoops(GradientForm form, swf::Gradient::Spread spread);
/// @returns those for any processor
GradientLoops plainGradientLoops(GradientForm form, swf::Gradient::Spread spread);
/// @returns those for AVX2; null where there is none
GradientLoops wideGradientLoops(GradientForm form, swf::Gradient::Spread spread);

/// Positions along the ramp, in entries, of pixels `first` to `first + count - 1`, within kGradientBlock.
/// @param count of whole groups of eight
void placeOnRamp(GradientForm form, const GradientRow& row, std::size_t first, std::size_t count,
                 float* positions);

struct GradientRamp;

/// Writes colours that go over into each other between entries of the ramp, each of which has its own in its
/// middle: as a gradient looks where edges are not smoothed.
void fillBetweenEntries(GradientForm form, swf::Gradient::Spread spread, const GradientRamp& ramp,
                        const GradientRow& row, std::size_t first, std::size_t count, std::uint32_t* to);

// The genuine player's radial gradients are too large by a hair, as its fixed-point numbers make them; found
// from its pictures, where it decides about single pixels on the rings of the ramp.
constexpr float kRadialSize = kRampSize * (1 - 1e-5F);

// Far beyond any number of repetitions that could be told apart.
constexpr float kMaxDistance = 1e6F;

} // namespace flash::render
