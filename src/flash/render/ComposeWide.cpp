#include "flash/render/ComposeWide.h"

#include "flash/render/Pixel.h"
#include "flash/render/WidePixels.h"

#include <algorithm>

// The ends of rows are groups of which some pixels are left alone: most rows of letters and small shapes are
// shorter than a group.
namespace flash::render::wide8
{

#ifdef ZORVEX_HAS_WIDE

namespace
{

// The coverages of a group's first pixels, 1 to 7 of them; nothing beyond them is read.
std::uint64_t fewCoverages(const std::uint8_t* coverage, std::size_t count)
{
    if (count >= 4) {
        // Both halves, which overlap in what is the same.
        std::uint32_t first, last;
        std::memcpy(&first, coverage, sizeof first);
        std::memcpy(&last, coverage + count - 4, sizeof last);
        return first | std::uint64_t{last} << 8 * (count - 4);
    }
    const std::size_t middle = count / 2, last = count - 1;
    return std::uint64_t{coverage[0]} | std::uint64_t{coverage[middle]} << 8 * middle |
           std::uint64_t{coverage[last]} << 8 * last;
}

constexpr std::uint64_t kAllFull = ~std::uint64_t{0};

} // namespace

ZORVEX_WIDE void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color)
{
    if (alphaOf(color) == 255) {
        std::fill_n(below, count, color);
        return;
    }
    if (color == 0) return;
    const Channels source = channelsOf(_mm256_set1_epi32(static_cast<int>(color)));
    for (; count >= kGroup; count -= kGroup, below += kGroup) store(below, over(source, load(below)));
    if (count == 0) return;
    const __m256i wanted = firstOf(count);
    store(below, wanted, over(source, load(below, wanted)));
}

ZORVEX_WIDE void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count,
                              std::uint32_t color)
{
    const __m256i pixels = _mm256_set1_epi32(static_cast<int>(color));
    const Channels source = channelsOf(pixels);
    const bool opaque = alphaOf(color) == 255;
    for (; count >= kGroup; count -= kGroup, below += kGroup, coverage += kGroup) {
        const std::uint64_t coverages = eightCoverages(coverage);
        if (coverages == 0) continue;
        if (coverages == kAllFull && opaque)
            store(below, pixels);
        else
            store(below, over(scaled(source, spreadCoverage(coverages)), load(below)));
    }
    if (count == 0) return;
    const __m256i wanted = firstOf(count);
    const Channels part = scaled(source, spreadCoverage(fewCoverages(coverage, count)));
    store(below, wanted, over(part, load(below, wanted)));
}

ZORVEX_WIDE void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count)
{
    for (; count >= kGroup; count -= kGroup, below += kGroup, source += kGroup) {
        const __m256i pixels = load(source);
        store(below, areOpaque(pixels) ? pixels : over(channelsOf(pixels), load(below)));
    }
    if (count == 0) return;
    const __m256i wanted = firstOf(count);
    store(below, wanted, over(channelsOf(load(source, wanted)), load(below, wanted)));
}

ZORVEX_WIDE void composePixels(std::uint32_t* below, const std::uint32_t* source,
                               const std::uint8_t* coverage, std::size_t count)
{
    for (; count >= kGroup; count -= kGroup, below += kGroup, source += kGroup, coverage += kGroup) {
        const std::uint64_t coverages = eightCoverages(coverage);
        if (coverages == 0) continue;
        const __m256i pixels = load(source);
        if (coverages == kAllFull && areOpaque(pixels))
            store(below, pixels);
        else
            store(below, over(scaled(channelsOf(pixels), spreadCoverage(coverages)), load(below)));
    }
    if (count == 0) return;
    const __m256i wanted = firstOf(count);
    const Channels part =
        scaled(channelsOf(load(source, wanted)), spreadCoverage(fewCoverages(coverage, count)));
    store(below, wanted, over(part, load(below, wanted)));
}

#else

void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color)
{
    plain::composeSolid(below, count, color);
}
void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count, std::uint32_t color)
{
    plain::composeSolid(below, coverage, count, color);
}
void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count)
{
    plain::composePixels(below, source, count);
}
void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count)
{
    plain::composePixels(below, source, coverage, count);
}

#endif

} // namespace flash::render::wide8
