// Gradients where edges are not smoothed, as the genuine player's recordings show them: looked at between the
// entries of the ramp, whose colours are premultiplied only then.
#include "flash/render/GradientRows.h"
#include "flash/render/LinearLight.h"
#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace flash::render
{
namespace
{

using Spread = swf::Gradient::Spread;

constexpr std::int32_t kLast = kRampSize - 1, kTwice = 2 * kRampSize - 1;

// Two neighbouring entries and how much of the second one there is, in 256ths.
struct Between {
    std::uint32_t from = 0, next = 0, part = 0;
    // A channel's level times 256.
    [[nodiscard]] std::uint32_t mixed(int shift) const
    {
        return (from >> shift & 0xFF) * (256 - part) + (next >> shift & 0xFF) * part;
    }
};

std::int32_t entryAt(std::int32_t at, Spread spread)
{
    if (spread == Spread::Reflect) {
        at &= kTwice;
        return std::min(at, kTwice - at);
    }
    return std::clamp(at, 0, kLast);
}

Between betweenAt(const std::uint32_t* ramp, float position, Spread spread)
{
    // Matrices near nothing put pixels where no number is.
    if (std::isnan(position)) position = 0;
    // Where a ramp begins anew its ends do not mix.
    if (spread == Spread::Repeat) position -= kRampSize * std::floor(position / kRampSize);
    const float at = position - 0.5F, whole = std::floor(at);
    const auto first = static_cast<std::int32_t>(whole);
    return {ramp[entryAt(first, spread)], ramp[entryAt(first + 1, spread)],
            static_cast<std::uint32_t>((at - whole) * 256 + 0.5F)};
}

std::uint32_t mixOpaque(const Between& at)
{
    const std::uint32_t rest = 256 - at.part;
    const std::uint32_t low =
        ((at.from & 0x00FF00FF) * rest + (at.next & 0x00FF00FF) * at.part + 0x00800080) >> 8;
    const std::uint32_t high =
        (at.from >> 8 & 0x00FF00FF) * rest + (at.next >> 8 & 0x00FF00FF) * at.part + 0x00800080;
    return (low & 0x00FF00FF) | (high & 0xFF00FF00);
}

constexpr std::uint32_t kFull = 255 * 256; ///< of a mixed level
constexpr float kToUnit = 1.0F / kFull;

// 0..1 of a mixed level of light.
const std::array<float, kFull + 1>& seenLevels()
{
    static const auto table = [] {
        std::array<float, kFull + 1> made{};
        for (std::uint32_t i = 0; i <= kFull; ++i)
            made[i] = static_cast<float>(fromLinearLight(static_cast<double>(i) / kFull));
        return made;
    }();
    return table;
}

float transformed(float value, std::int16_t factor, std::int16_t addend)
{
    return std::clamp(value * static_cast<float>(factor) / 256 + static_cast<float>(addend) / 255, 0.0F,
                      1.0F);
}

// Light is taken for premultiplied when it is made what is seen, although it is not: channels that exceed
// the alpha come out brighter than full. The recordings show that to the level.
float seen(std::uint32_t light, float alpha)
{
    if (alpha >= 1) return seenLevels()[light];
    if (alpha <= 0) return 0;
    const auto part = static_cast<double>(static_cast<float>(light) * kToUnit / alpha);
    return static_cast<float>(fromLinearLight(part)) * alpha;
}

std::uint32_t mixAny(const Between& at, const GradientRamp& ramp, bool isPlain)
{
    float alpha = static_cast<float>(at.mixed(24)) * kToUnit;
    std::array<float, 3> channels{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::uint32_t mixed = at.mixed(16 - 8 * static_cast<int>(i));
        channels[i] = ramp.isLinear ? seen(mixed, alpha) : static_cast<float>(mixed) * kToUnit;
    }
    if (!isPlain) {
        const swf::ColorTransform& t = ramp.transform;
        channels = {transformed(channels[0], t.redMul, t.redAdd),
                    transformed(channels[1], t.greenMul, t.greenAdd),
                    transformed(channels[2], t.blueMul, t.blueAdd)};
        alpha = transformed(alpha, t.alphaMul, t.alphaAdd);
    }
    const auto level = [](float value) { return static_cast<std::uint32_t>(value * 255 + 0.5F); };
    const std::uint32_t most = level(alpha);
    const auto premultiplied = [&](float value) { return std::min(level(value * alpha), most); };
    return packPixel(most, premultiplied(channels[0]), premultiplied(channels[1]),
                     premultiplied(channels[2]));
}

} // namespace

void fillBetweenEntries(GradientForm form, Spread spread, const GradientRamp& ramp, const GradientRow& row,
                        std::size_t first, std::size_t count, std::uint32_t* to)
{
    float positions[kGradientBlock];
    count = std::min<std::size_t>(count, kGradientBlock);
    placeOnRamp(form, row, first, (count + 7) & ~std::size_t{7}, positions);
    // Only gradients with smoothed edges are too large by a hair.
    if (form == GradientForm::Radial)
        for (std::size_t i = 0; i < count; ++i) positions[i] *= kRampSize / kRadialSize;
    const bool isPlain = ramp.transform.isIdentity();
    if (ramp.isOpaque && isPlain && !ramp.isLinear) {
        for (std::size_t i = 0; i < count; ++i)
            to[i] = mixOpaque(betweenAt(ramp.plain.data(), positions[i], spread));
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        to[i] = mixAny(betweenAt(ramp.plain.data(), positions[i], spread), ramp, isPlain);
}

} // namespace flash::render
