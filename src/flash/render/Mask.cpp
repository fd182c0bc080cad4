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
        std::size_t end = i + 1;
        while (end < spans.size() && spans[end].x == first.x) ++end;
        add(m_mask.at(first.x, y), spans.subspan(i, end - i));
        i = end;
    }
}

// What several styles have of the same pixels adds up.
void MaskSink::add(std::uint8_t* to, std::span<const StyleSpan> parts)
{
    const auto count = static_cast<std::size_t>(parts[0].count);
    if (parts[0].coverages != nullptr) {
        if (parts.size() == 1) {
            uniteCoverage(to, parts[0].coverages, count);
            return;
        }
        m_sums.assign(count, 0);
        for (const StyleSpan& part : parts)
            for (std::size_t i = 0; i < count; ++i)
                m_sums[i] = static_cast<std::uint8_t>(m_sums[i] + part.coverages[i]);
        uniteCoverage(to, m_sums.data(), count);
        return;
    }
    std::uint32_t sum = 0;
    for (const StyleSpan& part : parts) sum += part.coverage;
    const std::uint32_t coverage = toByte(sum);
    if (coverage == 255) {
        std::fill_n(to, count, std::uint8_t{255});
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<std::uint8_t>(to[i] + coverage - div255(to[i] * coverage));
}

} // namespace flash::render
