// What DenseCells lays onto the ground itself, with nothing kept for a sink in between.
#include "flash/render/CellSums.h"
#include "flash/render/Compose.h"
#include "flash/render/DenseCells.h"
#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace flash::render
{

// The same as sweepOne() and what a painter makes of it, with nothing kept in between.
template <class Sum>
void DenseCells<Sum>::paintOne(Sum* sums, FillRule rule, std::uint32_t color, std::uint32_t* to)
{
    std::int32_t carry = 0;
    for (const Stretch& stretch : m_stretches) {
        if (stretch.varies) {
            const int count = stretch.end - stretch.begin;
            laySolid(sums + stretch.begin, count, carry, rule, color, to + stretch.begin,
                     m_width - stretch.begin);
            continue;
        }
        const std::uint32_t coverage = toCoverage(insideArea(areaOf(carry), rule));
        const int count = std::min(stretch.end, m_width) - stretch.begin;
        if (coverage == 0 || count <= 0) continue;
        composeSolid(to + stretch.begin, static_cast<std::size_t>(count),
                     count <= kShortStretch ? scale255(color, toByte(coverage)) : scale256(color, coverage));
    }
}

// The same for a paint that lays its colours itself. What hangs together is laid at once.
template <class Sum>
void DenseCells<Sum>::layOne(Sum* sums, FillRule rule, const Paint& paint, int left, int y, std::uint32_t* to)
{
    constexpr int kLong = 48; // evenly covered pixels worth a start of their own
    std::int32_t carry = 0;
    int begin = 0, end = 0; // of what is not laid yet
    const auto layOpen = [&] {
        const int last = std::min(end, m_width);
        if (last > begin)
            paint.lay(left + begin, y, m_coverage.data() + begin, static_cast<std::size_t>(last - begin),
                      to + begin);
        begin = end;
    };
    for (const Stretch& stretch : m_stretches) {
        const auto count = static_cast<std::size_t>(stretch.end - stretch.begin);
        std::uint8_t* coverages = m_coverage.data() + stretch.begin;
        std::uint32_t coverage = 1;
        if (stretch.varies)
            takeCoverage(sums + stretch.begin, count, carry, rule, coverages);
        else
            coverage = toCoverage(insideArea(areaOf(carry), rule));
        const int within = std::min(stretch.end, m_width) - stretch.begin;
        const bool isAlone = !stretch.varies && coverage == kSubpixels && within >= kLong && paint.isOpaque();
        if (coverage == 0 || isAlone) {
            layOpen();
            if (isAlone)
                paint.fetch(left + stretch.begin, y, static_cast<std::size_t>(within), to + stretch.begin);
            begin = stretch.end;
        } else if (!stretch.varies) {
            std::memset(coverages, toByte(coverage), count);
        }
        end = stretch.end;
    }
    layOpen();
}

// The same for rows whose numbers all lie near each other: converting what is between, too, costs less than
// telling it apart.
// @returns false where they do not, and nothing is done
template <class Sum>
bool DenseCells<Sum>::layNear(Sum* sums, std::uint64_t* bits, FillRule rule, const Paint& paint, int left,
                              int y, std::uint32_t* to)
{
    constexpr unsigned kMostGroups = 16;
    const auto first = static_cast<unsigned>(std::countr_zero(*bits)),
               last = 64 - static_cast<unsigned>(std::countl_zero(*bits));
    if (m_wordsOfRow != 1 || last - first > kMostGroups) return false;
    *bits = 0;
    const auto begin = static_cast<int>(first * kGroup);
    auto end = static_cast<int>(last * kGroup);
    std::uint8_t* coverages = m_coverage.data() + begin;
    std::int32_t carry = 0;
    takeCoverage(sums + begin, static_cast<std::size_t>(end - begin), carry, rule, coverages);
    // What the right border cuts off reaches up to it.
    if (const std::uint32_t rest = toCoverage(insideArea(areaOf(carry), rule)); rest != 0 && end < m_width) {
        std::memset(m_coverage.data() + end, toByte(rest), static_cast<std::size_t>(m_width - end));
        end = m_width;
    }
    end = std::min(end, m_width);
    if (end > begin) paint.lay(left + begin, y, coverages, static_cast<std::size_t>(end - begin), to + begin);
    return true;
}

template void DenseCells<std::int32_t>::paintOne(std::int32_t*, FillRule, std::uint32_t, std::uint32_t*);
template void DenseCells<std::int32_t>::layOne(std::int32_t*, FillRule, const Paint&, int, int,
                                               std::uint32_t*);
template bool DenseCells<std::int32_t>::layNear(std::int32_t*, std::uint64_t*, FillRule, const Paint&, int,
                                                int, std::uint32_t*);
template void DenseCells<std::int16_t>::paintOne(std::int16_t*, FillRule, std::uint32_t, std::uint32_t*);
template void DenseCells<std::int16_t>::layOne(std::int16_t*, FillRule, const Paint&, int, int,
                                               std::uint32_t*);
template bool DenseCells<std::int16_t>::layNear(std::int16_t*, std::uint64_t*, FillRule, const Paint&, int,
                                                int, std::uint32_t*);

} // namespace flash::render
