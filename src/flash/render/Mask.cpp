#include "flash/render/Mask.h"

#include "flash/render/Compose.h"
#include "flash/render/Pixel.h"

#include <algorithm>

namespace flash::render
{

Mask emptyMask(const IntRect& bounds)
{
    Mask mask{bounds, {}};
    // One byte more, so that an empty rectangle is not taken for one that lets all through.
    mask.coverage.resize(
        static_cast<std::size_t>(bounds.width()) * static_cast<std::size_t>(bounds.height()) + 1);
    return mask;
}

void intersectMask(Mask& mask, const Mask& with)
{
    const IntRect common = intersect(mask.bounds, with.bounds);
    Mask result = mask.isRectangle() && with.isRectangle() ? Mask{common, {}} : emptyMask(common);
    if (!result.isRectangle()) {
        const auto width = static_cast<std::size_t>(common.width());
        for (int y = common.top; y < common.bottom; ++y) {
            std::uint8_t* to = result.at(common.left, y);
            const Mask& first = mask.isRectangle() ? with : mask;
            std::copy_n(first.at(common.left, y), width, to);
            if (!mask.isRectangle() && !with.isRectangle()) scaleCoverage(to, with.at(common.left, y), width);
        }
    }
    mask = std::move(result);
}

void simplifyMask(Mask& mask)
{
    if (mask.isRectangle()) return;
    const int width = mask.bounds.width();
    const auto isSet = [](std::uint8_t c) { return c != 0; };
    IntRect used;
    bool full = true;
    for (int y = mask.bounds.top; y < mask.bounds.bottom; ++y) {
        const std::uint8_t* row = mask.at(mask.bounds.left, y);
        const std::uint8_t* first = std::find_if(row, row + width, isSet);
        if (first == row + width) continue;
        const std::uint8_t* last = row + width;
        while (last[-1] == 0) --last;
        const IntRect part{mask.bounds.left + static_cast<int>(first - row), y,
                           mask.bounds.left + static_cast<int>(last - row), y + 1};
        // A rectangle's rows are all alike and follow each other.
        if (!used.isEmpty() && (part.left != used.left || part.right != used.right || y != used.bottom))
            full = false;
        full = full && std::all_of(first, last, [](std::uint8_t c) { return c == 255; });
        used = unite(used, part);
    }
    if (used.isEmpty()) {
        mask = {};
        return;
    }
    if (full) {
        mask = {used, {}};
        return;
    }
    if (used == mask.bounds) return;
    intersectMask(mask, {used, {}});
}

void MaskSink::row(int y, std::span<const StyleSpan> spans)
{
    for (std::size_t i = 0; i < spans.size();) {
        const StyleSpan& first = spans[i];
        std::uint32_t sum = 0;
        for (; i < spans.size() && spans[i].x == first.x; ++i) sum += spans[i].coverage;
        const std::uint32_t coverage = std::min(sum, 255U);
        std::uint8_t* to = m_mask.at(first.x, y);
        if (coverage == 255) {
            std::fill_n(to, first.count, std::uint8_t{255});
            continue;
        }
        for (int k = 0; k < first.count; ++k)
            to[k] = static_cast<std::uint8_t>(to[k] + coverage - div255(to[k] * coverage));
    }
}

} // namespace flash::render
