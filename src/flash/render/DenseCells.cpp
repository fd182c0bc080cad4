#include "flash/render/DenseCells.h"

#include "flash/render/CellSums.h"
#include "flash/render/Compose.h"
#include "flash/render/Paint.h"
#include "flash/render/Pixel.h"

#include <bit>
#include <cstring>
#include <utility>

namespace flash::render
{
namespace
{

// Numbers for all styles of all rows: 8 MiB of them, of which only those near outlines are ever touched.
constexpr std::size_t kMaxSums = std::size_t{2} << 20;
// Pixels without a number of their own, up to so many between others, are cheaper converted than told apart.
constexpr int kShortGap = 16;
// Pixels beyond the right border that lines there touch, the last one with nothing.
constexpr std::size_t kBeyond = 3;

// What a sample at each place within two neighbouring pixels adds to them and to the next one, a byte each,
// the first pixel's the lowest. Of a row of samples through a pixel, so many units as it has steps, what lies
// to the right of the place is the pixel's own, and the rest its neighbour's.
template <int kStepBits>
constexpr auto kPartsAt = [] {
    constexpr std::uint32_t kSteps = 1 << kStepBits;
    std::array<std::uint32_t, 2 * kSteps> parts{};
    for (std::uint32_t at = 0; at < 2 * kSteps; ++at) {
        const std::uint32_t steps = at % kSteps, shift = 8 * (at / kSteps);
        parts[at] = (kSteps - steps) << shift | steps << (shift + 8);
    }
    return parts;
}();

std::size_t roundedUp(std::size_t value, std::size_t unit) { return (value + unit - 1) / unit * unit; }

} // namespace

template <class Sum>
bool DenseCells<Sum>::suits(int width, int height, std::uint32_t styles)
{
    return styles <= kMaxStyles && roundedUp(static_cast<std::size_t>(width) + kBeyond, kGroup) *
                                           static_cast<std::size_t>(height) * styles <=
                                       kMaxSums;
}

template <class Sum>
void DenseCells<Sum>::begin(int width, int height, std::uint32_t styles)
{
    const auto rows = static_cast<std::size_t>(height);
    m_width = width;
    m_styles = styles;
    m_styleSize = roundedUp(static_cast<std::size_t>(width) + kBeyond, kGroup);
    m_rowSize = m_styleSize * styles;
    m_wordsOfRow = roundedUp(m_styleSize / kGroup, 64) / 64;
    if (m_sums.size() < m_rowSize * rows) m_sums.resize(m_rowSize * rows);
    if (m_bits.size() < m_wordsOfRow * rows) m_bits.resize(m_wordsOfRow * rows);
    if (m_rowStyles.size() < rows) m_rowStyles.resize(rows);
    // See Paint::lay().
    if (m_coverage.size() < m_styleSize + kGroup) m_coverage.resize(m_styleSize + kGroup);
    if (m_areas.size() < m_rowSize) m_areas.resize(m_rowSize);
    if (m_shares.size() < m_rowSize) m_shares.resize(m_rowSize);
    if (m_present.size() < m_rowSize / kGroup) m_present.resize(m_rowSize / kGroup);
    setStyles(0, 0);
}

template <class Sum>
void DenseCells<Sum>::setStyles(std::uint32_t left, std::uint32_t right)
{
    const auto start = [this](std::uint32_t style) {
        return style == 0 ? kNone : static_cast<std::ptrdiff_t>((style - 1) * m_styleSize);
    };
    m_left = start(left);
    m_right = start(right);
    m_styleBits = (left == 0 ? 0 : 1U << (left - 1)) | (right == 0 ? 0 : 1U << (right - 1));
}

template <class Sum>
void DenseCells<Sum>::markBeyond(std::uint64_t* bits, unsigned first, unsigned last)
{
    constexpr std::uint64_t kAll = ~std::uint64_t{0};
    const std::uint64_t from = kAll << (first % 64), upTo = kAll >> (63 - last % 64);
    if (first / 64 == last / 64) {
        bits[first / 64] |= from & upTo;
        return;
    }
    bits[first / 64] |= from;
    for (unsigned word = first / 64 + 1; word < last / 64; ++word) bits[word] = kAll;
    bits[last / 64] |= upTo;
}

template <class Sum>
template <int kStepBits, bool kBothSides>
void DenseCells<Sum>::countSides(const CountedLine& line)
{
    constexpr int kSteps = 1 << kStepBits, kStepArea = 2 * (kSubpixels / kSteps) * (kSubpixels / kSteps);
    constexpr int kFraction = CountedLine::kFraction;
    const auto index = static_cast<std::size_t>(line.first >> kStepBits);
    Sum* const sums = m_sums.data() + index * m_rowSize;
    // Of a line with one side only, that one is counted, left ones with the other sign.
    const bool isLeft = !kBothSides && m_left != kNone;
    Sum* right = sums + (isLeft ? m_left : m_right);
    Sum* left = kBothSides ? sums + m_left : nullptr;
    std::uint64_t* bits = m_bits.data() + index * m_wordsOfRow;
    std::uint32_t* styles = m_rowStyles.data() + index;
    const int unit = (isLeft ? -line.sign : line.sign) * (kStepArea >> kUnitBits<Sum>);
    const auto add = [&](int column, int units) {
        addTo(right[column], unit * units);
        if constexpr (kBothSides) addTo(left[column], -unit * units);
    };
    std::int64_t x = line.x;
    const std::int64_t slope = line.slope;
    int rest = line.last + 1 - line.first;
    int count = std::min(kSteps - (line.first & (kSteps - 1)), rest);
    while (true) {
        const int from = static_cast<int>(x >> kFraction);
        const int to = static_cast<int>((x + slope * (count - 1)) >> kFraction);
        const int column = std::min(from, to) >> kStepBits, lastColumn = std::max(from, to) >> kStepBits;
        *styles |= m_styleBits;
        // The last column's right neighbour is written to as well.
        mark(bits, static_cast<unsigned>(column) / kGroup, static_cast<unsigned>(lastColumn + 1) / kGroup);
        if (lastColumn - column <= 1) {
            // Those beyond the line's end are looked at too: half the rows of a shape's short lines are not
            // whole, and which is hard to foretell. So is whether a row reaches a second column.
            std::uint32_t parts = 0;
            for (int i = 0; i < kSteps; ++i) {
                const int at = static_cast<int>((x + i * slope) >> kFraction) - (column << kStepBits);
                parts += kPartsAt<kStepBits>[static_cast<std::size_t>(at & (2 * kSteps - 1))] &
                         static_cast<std::uint32_t>(-static_cast<int>(i < count));
            }
            add(column, static_cast<int>(parts & 0xFF));
            add(column + 1, static_cast<int>(parts >> 8 & 0xFF));
            add(column + 2, static_cast<int>(parts >> 16));
            x += count * slope;
        } else {
            for (int i = 0; i < count; ++i, x += slope) {
                const int at = static_cast<int>(x >> kFraction), steps = at & (kSteps - 1);
                add(at >> kStepBits, kSteps - steps);
                add((at >> kStepBits) + 1, steps);
            }
        }
        rest -= count;
        if (rest == 0) return;
        count = std::min(kSteps, rest);
        ++styles;
        bits += m_wordsOfRow;
        right += m_rowSize;
        if constexpr (kBothSides) left += m_rowSize;
    }
}

template <class Sum>
template <int kStepBits>
void DenseCells<Sum>::addCounted(const CountedLine& line)
{
    if (m_left != kNone && m_right != kNone)
        countSides<kStepBits, true>(line);
    else if (m_left != kNone || m_right != kNone)
        countSides<kStepBits, false>(line);
}

template <class Sum>
void DenseCells<Sum>::findStretches(std::uint64_t* bits)
{
    m_stretches.clear();
    int at = 0;
    for (std::size_t word = 0; word < m_wordsOfRow; ++word) {
        std::uint64_t rest = std::exchange(bits[word], 0);
        while (rest != 0) {
            const int first = std::countr_zero(rest);
            const int count = std::countr_one(rest >> first);
            const int begin = (static_cast<int>(word) * 64 + first) * static_cast<int>(kGroup);
            const int end = begin + count * static_cast<int>(kGroup);
            if (!m_stretches.empty() && begin - at <= kShortGap) {
                m_stretches.back().end = end;
            } else {
                if (begin > at) m_stretches.push_back({at, begin, false});
                m_stretches.push_back({begin, end, true});
            }
            at = end;
            if (first + count == 64) break;
            rest = rest >> (first + count) << (first + count);
        }
    }
    if (at < m_width) m_stretches.push_back({at, m_width, false});
}

template <class Sum>
void DenseCells<Sum>::flush()
{
    if (m_openStyle == 0) return;
    const int end = std::min(m_openEnd, m_width);
    if (end > m_openBegin)
        m_spans.push_back(
            {m_origin + m_openBegin, end - m_openBegin, m_openStyle, 0, m_coverage.data() + m_openBegin});
    m_openStyle = 0;
}

// The coverage of these pixels stands in m_coverage.
template <class Sum>
void DenseCells<Sum>::addPixels(std::uint32_t style, int x, int count)
{
    if (m_openStyle != style || m_openEnd != x) {
        flush();
        m_openStyle = style;
        m_openBegin = x;
    }
    m_openEnd = x + count;
}

template <class Sum>
void DenseCells<Sum>::addConstant(std::uint32_t style, int x, int count, std::uint32_t coverage)
{
    count = std::min(count, m_width - x);
    if (count <= 0) return;
    if (count <= kShortStretch && m_openStyle == style && m_openEnd == x) {
        std::memset(m_coverage.data() + x, toByte(coverage), static_cast<std::size_t>(count));
        m_openEnd += count;
        return;
    }
    flush();
    m_spans.push_back({m_origin + x, count, style, coverage});
}

template <class Sum>
void DenseCells<Sum>::sweepOne(std::uint32_t style, Sum* sums, FillRule rule)
{
    std::int32_t carry = 0;
    for (const Stretch& stretch : m_stretches) {
        const int count = stretch.end - stretch.begin;
        if (stretch.varies) {
            takeCoverage(sums + stretch.begin, static_cast<std::size_t>(count), carry, rule,
                         m_coverage.data() + stretch.begin);
            addPixels(style, stretch.begin, count);
        } else if (const std::uint32_t coverage = toCoverage(insideArea(areaOf(carry), rule));
                   coverage != 0) {
            addConstant(style, stretch.begin, count, coverage);
        }
    }
    flush();
}

// Pixels that all have the same areas of the styles, the highest first.
template <class Sum>
void DenseCells<Sum>::emitShared(int x, int count, std::span<const std::int32_t> areas,
                                 std::span<const std::uint32_t> styles)
{
    // Rounding the running sum, not each part, keeps a full pixel at exactly 256.
    const std::size_t first = m_spans.size();
    std::int32_t sum = 0;
    std::uint32_t given = 0;
    for (std::size_t i = 0; i < areas.size(); ++i) {
        sum = std::min(sum + areas[i], kFullArea);
        const std::uint32_t total = toCoverage(sum);
        if (total != given) m_spans.push_back({m_origin + x, count, styles[i], total - given});
        given = total;
    }
    if (m_spans.size() != first + 1) return;
    // One style alone continues what is before it.
    const StyleSpan alone = m_spans.back();
    m_spans.pop_back();
    if (m_openStyle != alone.style || m_openEnd != x) {
        flush();
        m_openStyle = alone.style;
        m_openBegin = m_openEnd = x;
    }
    addConstant(alone.style, x, count, alone.coverage);
}

template <class Sum>
void DenseCells<Sum>::sweepSeveral(std::uint32_t styles, Sum* sums, FillRule rule)
{
    // Highest first: it lies on top.
    std::array<std::uint32_t, kMaxStyles> numbers{};
    std::array<std::int32_t, kMaxStyles> carries{}, here{};
    std::size_t n = 0;
    for (std::uint32_t style = m_styles; style > 0; --style)
        if ((styles >> (style - 1) & 1U) != 0) numbers[n++] = style;
    for (const Stretch& stretch : m_stretches) {
        if (!stretch.varies) {
            for (std::size_t s = 0; s < n; ++s) here[s] = insideArea(areaOf(carries[s]), rule);
            flush();
            emitShared(stretch.begin, stretch.end - stretch.begin, {here.data(), n}, {numbers.data(), n});
            continue;
        }
        const auto count = static_cast<std::size_t>(stretch.end - stretch.begin);
        const std::size_t groups = m_styleSize / kGroup;
        for (std::size_t s = 0; s < n; ++s)
            takeAreas(sums + (numbers[s] - 1) * m_styleSize + stretch.begin, count, carries[s], rule,
                      m_areas.data() + s * m_styleSize, m_present.data() + s * groups);
        for (std::size_t group = 0; group < count / kGroup; ++group) {
            std::size_t present = 0, last = 0;
            for (std::size_t s = 0; s < n; ++s) {
                if (m_present[s * groups + group] == 0) continue;
                ++present;
                last = s;
            }
            const int x = stretch.begin + static_cast<int>(group * kGroup);
            if (present == 1) {
                areasToBytes(m_areas.data() + last * m_styleSize + group * kGroup, kGroup,
                             m_coverage.data() + x);
                addPixels(numbers[last], x, kGroup);
            } else if (present > 1) {
                sweepShared(x, group, {numbers.data(), n});
            }
        }
    }
    flush();
}

// A group of pixels, the `group`th of the areas at hand, of which several styles have something.
template <class Sum>
void DenseCells<Sum>::sweepShared(int x, std::size_t group, std::span<const std::uint32_t> styles)
{
    flush();
    const int count = std::min(static_cast<int>(kGroup), m_width - x);
    if (count <= 0) return;
    Given given;
    for (std::size_t s = 0; s < styles.size(); ++s) {
        if (m_present[s * (m_styleSize / kGroup) + group] == 0) continue;
        std::uint8_t* shares = m_shares.data() + s * m_styleSize + x;
        giveShares(given, m_areas.data() + s * m_styleSize + group * kGroup, shares);
        m_spans.push_back({m_origin + x, count, styles[s], 0, shares});
    }
}

// What a row of pixels will need of memory is asked for some rows ahead: pictures are larger than caches, and
// the short pieces of a shape's rows are nothing that a processor would foresee.
template <class Sum>
void DenseCells<Sum>::foresee(int row, int left, int y, const PixelGround& ground) const
{
    constexpr unsigned kLineGroups = 2; // 64 bytes
    constexpr unsigned kMostGroups = 32;
    const std::uint64_t* bits = m_bits.data() + static_cast<std::size_t>(row) * m_wordsOfRow;
    const std::uint32_t* pixels = ground.at(left, y);
    unsigned first = 0, end = 0; // groups
    for (std::size_t word = 0; word < m_wordsOfRow; ++word) {
        if (bits[word] == 0) continue;
        const auto base = static_cast<unsigned>(word) * 64;
        if (end == 0) first = base + static_cast<unsigned>(std::countr_zero(bits[word]));
        end = base + 64 - static_cast<unsigned>(std::countl_zero(bits[word]));
    }
    if (end - first > kMostGroups) return; // so long a row is foreseen
    for (unsigned group = first; group < end; group += kLineGroups)
        __builtin_prefetch(pixels + group * kGroup, 1);
}

template <class Sum>
void DenseCells<Sum>::sweep(int firstRow, int lastRow, int left, int top, FillRule rule, SpanSink& sink)
{
    constexpr int kAhead = 4;
    const PixelGround ground = sink.ground();
    m_askedStyle = 0;
    if (ground.pixels == nullptr) {
        for (int row = firstRow; row <= lastRow; ++row) sweepRow(row, left, top + row, rule, sink, ground);
        return;
    }
    for (int row = firstRow; row < std::min(firstRow + kAhead, lastRow + 1); ++row)
        foresee(row, left, top + row, ground);
    for (int row = firstRow; row <= lastRow; ++row) {
        if (row + kAhead <= lastRow) foresee(row + kAhead, left, top + row + kAhead, ground);
        sweepRow(row, left, top + row, rule, sink, ground);
    }
}

template <class Sum>
void DenseCells<Sum>::sweepRow(int row, int left, int y, FillRule rule, SpanSink& sink,
                               const PixelGround& ground)
{
    const std::uint32_t styles = std::exchange(m_rowStyles[static_cast<std::size_t>(row)], 0);
    if (styles == 0) return;
    Sum* sums = m_sums.data() + static_cast<std::size_t>(row) * m_rowSize;
    std::uint64_t* bits = m_bits.data() + static_cast<std::size_t>(row) * m_wordsOfRow;
    const bool isSingle = (styles & (styles - 1)) == 0;
    const auto style = static_cast<std::uint32_t>(std::countr_zero(styles));
    if (isSingle && ground.pixels != nullptr) {
        if (m_askedStyle != style + 1) {
            m_askedStyle = style + 1;
            m_plainColor = sink.plainColor(m_askedStyle);
            m_plainPaint = sink.plainPaint(m_askedStyle);
        }
        Sum* const own = sums + style * m_styleSize;
        std::uint32_t* const to = ground.at(left, y);
        if (m_plainPaint != nullptr && layNear(own, bits, rule, *m_plainPaint, left, y, to)) return;
        findStretches(bits);
        if (m_plainColor) {
            paintOne(own, rule, *m_plainColor, to);
            return;
        }
        if (m_plainPaint != nullptr) {
            layOne(own, rule, *m_plainPaint, left, y, to);
            return;
        }
    } else {
        findStretches(bits);
    }
    m_origin = left;
    m_spans.clear();
    if (isSingle)
        sweepOne(style + 1, sums + style * m_styleSize, rule);
    else
        sweepSeveral(styles, sums, rule);
    if (!m_spans.empty()) sink.row(y, m_spans);
}

template class DenseCells<std::int32_t>;
template class DenseCells<std::int16_t>;
template void DenseCells<std::int32_t>::addCounted<1>(const CountedLine& line);
template void DenseCells<std::int16_t>::addCounted<2>(const CountedLine& line);

} // namespace flash::render
