#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>

// What scan conversion says about the pixels of a row.
namespace flash::render
{

/// Which windings of a style's outline count as inside.
enum class FillRule : std::uint8_t { EvenOdd, NonZero };

/// `count` pixels from `x` on belong to `style`: either all to the same degree, `coverage` of 256, or each to
/// its own, `coverages` of 255.
struct StyleSpan {
    int x = 0, count = 0;
    std::uint32_t style = 0;
    std::uint32_t coverage = 0;
    const std::uint8_t* coverages = nullptr; ///< not null: counts instead of `coverage`
};

/// Pixels that a sink lays what it receives onto.
struct PixelGround {
    std::uint32_t* pixels = nullptr; ///< those of device pixel (left, top); null for none
    std::ptrdiff_t stride = 0;       ///< pixels from one row to the next
    int left = 0, top = 0;
    [[nodiscard]] std::uint32_t* at(int x, int y) const { return pixels + (y - top) * stride + (x - left); }
};

class Paint;

/// Receives what a row holds, from left to right. Where several styles share pixels, their spans follow each
/// other with the same `x` and `count`; coverages are then given in the same way for all of them, and those
/// of one pixel sum up to 256, or 255, at most. Other spans do not overlap. The spans and what they point to
/// are gone afterwards.
class SpanSink
{
public:
    virtual ~SpanSink() = default;
    virtual void row(int y, std::span<const StyleSpan> spans) = 0;
    /// For converters that can fetch pixels ahead, or lay them themselves.
    [[nodiscard]] virtual PixelGround ground() const { return {}; }
    /// What a span of the style would be laid onto the ground with, premultiplied, if it is one colour and
    /// nothing else matters: the converter may do it itself then instead of calling row().
    [[nodiscard]] virtual std::optional<std::uint32_t> plainColor(std::uint32_t /*style*/) const
    {
        return std::nullopt;
    }
    /// The same for a style whose colours are laid by Paint::lay(); null if it has none such, or something
    /// else matters.
    [[nodiscard]] virtual const Paint* plainPaint(std::uint32_t /*style*/) const { return nullptr; }
};

// Within a pixel, positions are counted in 1/256 of it, and areas in such a unit that 2 * 256 * 256 is the
// whole pixel.
constexpr int kSubpixelBits = 8;
constexpr int kSubpixels = 1 << kSubpixelBits;
constexpr std::int32_t kFullArea = 2 * kSubpixels * kSubpixels;

/// The part of a pixel that is inside, 0 to kFullArea, of the sum of its windings' areas.
inline std::int32_t insideArea(std::int32_t area, FillRule rule)
{
    area = std::abs(area);
    if (rule == FillRule::NonZero) return std::min(area, kFullArea);
    area &= 2 * kFullArea - 1;
    return std::min(area, 2 * kFullArea - area);
}

/// 0..256, rounded.
inline std::uint32_t toCoverage(std::int32_t area)
{
    return static_cast<std::uint32_t>(area + kSubpixels) >> (kSubpixelBits + 1);
}

/// 0..256 to 0..255.
constexpr std::uint8_t toByte(std::uint32_t coverage)
{
    return static_cast<std::uint8_t>(coverage - (coverage >> 8));
}

} // namespace flash::render
