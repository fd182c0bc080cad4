#pragma once

#include "flash/render/Spans.h"
#include "flash/render/Surface.h"

#include <cstdint>
#include <vector>

namespace flash::render
{

/// What limits drawing: coverage 0..255 of each device pixel within `bounds`, nothing outside. Without
/// coverage the whole rectangle lets through.
struct Mask {
    IntRect bounds;
    std::vector<std::uint8_t> coverage; ///< rows of bounds.width(), or empty
    [[nodiscard]] bool isRectangle() const { return coverage.empty(); }
    /// Not for rectangles.
    [[nodiscard]] const std::uint8_t* at(int x, int y) const
    {
        return coverage.data() + static_cast<std::ptrdiff_t>(y - bounds.top) * bounds.width() +
               (x - bounds.left);
    }
    [[nodiscard]] std::uint8_t* at(int x, int y)
    {
        return coverage.data() + static_cast<std::ptrdiff_t>(y - bounds.top) * bounds.width() +
               (x - bounds.left);
    }
};

/// A mask that covers nothing yet.
Mask emptyMask(const IntRect& bounds);
/// Leaves what both cover.
void intersectMask(Mask& mask, const Mask& with);
/// Cuts away the empty border, and turns a mask that is a plain rectangle into one that is known as such: the
/// usual case, for which drawing is as fast as without a mask.
void simplifyMask(Mask& mask);

/// Adds all that is swept to a mask, whatever its style. Coverage within one sweep adds up; between sweeps it
/// unites.
class MaskSink final : public SpanSink
{
public:
    explicit MaskSink(Mask& mask) : m_mask(mask) {}
    void row(int y, std::span<const StyleSpan> spans) override;

private:
    void add(std::uint8_t* to, std::span<const StyleSpan> parts);
    Mask& m_mask;
    std::vector<std::uint8_t> m_sums;
};

} // namespace flash::render
