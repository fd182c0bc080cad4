#include "flash/render/GradientRows.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace flash::render
{
namespace
{

using Spread = swf::Gradient::Spread;

// What is worked out side by side comes in whole groups of so many: some pixels more cost less than some one
// by one at the end, and most rows of a shape are short.
constexpr std::size_t kGroup = 8;
constexpr std::size_t wholeGroups(std::size_t count) { return (count + kGroup - 1) & ~(kGroup - 1); }

constexpr std::int32_t kLast = kRampSize - 1, kTwice = 2 * kRampSize - 1;

// Positions along the ramp, in entries, to whole entries that there are. Positions are bounded by the
// callers.
// @param count of whole groups, here and below
void toEntries(const float* positions, std::size_t count, Spread spread, std::int32_t* entries)
{
    count &= ~(kGroup - 1);
    switch (spread) {
    case Spread::Pad:
        for (std::size_t i = 0; i < count; ++i)
            entries[i] = std::min(std::max(static_cast<std::int32_t>(positions[i]), 0), kLast);
        return;
    case Spread::Reflect:
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t at = static_cast<std::int32_t>(positions[i]) & kTwice;
            entries[i] = std::min(at, kTwice - at);
        }
        return;
    case Spread::Repeat:
        for (std::size_t i = 0; i < count; ++i) entries[i] = static_cast<std::int32_t>(positions[i]) & kLast;
        return;
    }
}

// Written four at a time, as they are read soon after: what was written in smaller pieces would have to reach
// memory first.
void lookUp(const std::uint32_t* ramp, const std::int32_t* entries, std::size_t count, std::uint32_t* to)
{
    using Pixels4 = std::uint32_t __attribute__((vector_size(16)));
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        const Pixels4 four = {ramp[entries[i]], ramp[entries[i + 1]], ramp[entries[i + 2]],
                              ramp[entries[i + 3]]};
        std::memcpy(to + i, &four, sizeof four);
    }
    for (; i < count; ++i) to[i] = ramp[entries[i]];
}

float indexOf(std::size_t first, std::size_t i) { return static_cast<float>(static_cast<int>(first + i)); }

void placeLinear(const GradientRow& row, std::size_t first, std::size_t count, float* positions)
{
    count &= ~(kGroup - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const float at = row.startX + row.stepX * indexOf(first, i);
        positions[i] = std::min(std::max(at, -kMaxDistance), kMaxDistance);
    }
}

void placeRadial(const GradientRow& row, std::size_t first, std::size_t count, float* positions)
{
    count &= ~(kGroup - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const float x = row.startX + row.stepX * indexOf(first, i);
        const float y = row.startY + row.stepY * indexOf(first, i);
        positions[i] = std::min(std::sqrt(x * x + y * y) * kRadialSize, kMaxDistance);
    }
}

// The ray from the focal point (f, 0) through (x, y) meets the unit circle; the position is how far along
// that way the point lies: t = (f dx + sqrt(dx dx + y y - f f y y)) / (1 - f f), dx being x - f.
void placeFocal(const GradientRow& row, std::size_t first, std::size_t count, float* positions)
{
    count &= ~(kGroup - 1);
    const float focal = row.focal, inverse = 1 / (1 - focal * focal);
    for (std::size_t i = 0; i < count; ++i) {
        const float dx = row.startX + row.stepX * indexOf(first, i) - focal;
        const float y = row.startY + row.stepY * indexOf(first, i);
        const float root = std::sqrt(std::max(dx * dx + y * y - focal * focal * y * y, 0.0F));
        const float at = (focal * dx + root) * inverse * kRampSize;
        positions[i] = std::min(std::max(at, 0.0F), kMaxDistance);
    }
}

template <GradientForm kForm, Spread kSpread>
void fillPlain(const std::uint32_t* ramp, const GradientRow& row, std::size_t first, std::size_t count,
               std::uint32_t* to)
{
    float positions[kGradientBlock];
    std::int32_t entries[kGradientBlock];
    count = std::min<std::size_t>(count, kGradientBlock);
    const std::size_t whole = wholeGroups(count);
    placeOnRamp(kForm, row, first, whole, positions);
    // Before the ramp, conversion would round the other way.
    if constexpr (kForm == GradientForm::Linear && kSpread != Spread::Pad)
        for (std::size_t i = 0; i < whole; ++i) positions[i] = std::floor(positions[i]);
    toEntries(positions, whole, kSpread, entries);
    lookUp(ramp, entries, count, to);
}

template <GradientForm kForm>
GradientLoops plainOf(Spread spread)
{
    switch (spread) {
    case Spread::Pad: return {fillPlain<kForm, Spread::Pad>};
    case Spread::Reflect: return {fillPlain<kForm, Spread::Reflect>};
    case Spread::Repeat: break;
    }
    return {fillPlain<kForm, Spread::Repeat>};
}

} // namespace

void placeOnRamp(GradientForm form, const GradientRow& row, std::size_t first, std::size_t count,
                 float* positions)
{
    switch (form) {
    case GradientForm::Linear: placeLinear(row, first, count, positions); break;
    case GradientForm::Radial: placeRadial(row, first, count, positions); break;
    case GradientForm::Focal: placeFocal(row, first, count, positions); break;
    }
}

GradientLoops plainGradientLoops(GradientForm form, Spread spread)
{
    switch (form) {
    case GradientForm::Linear: return plainOf<GradientForm::Linear>(spread);
    case GradientForm::Radial: return plainOf<GradientForm::Radial>(spread);
    case GradientForm::Focal: break;
    }
    return plainOf<GradientForm::Focal>(spread);
}

GradientLoops gradientLoops(GradientForm form, Spread spread)
{
    const GradientLoops wide = wideGradientLoops(form, spread);
    return wide.fill != nullptr ? wide : plainGradientLoops(form, spread);
}

} // namespace flash::render
