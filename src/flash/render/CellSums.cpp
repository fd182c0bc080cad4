#include "flash/render/CellSums.h"

#include "flash/render/Pixel.h"
#include "flash/render/PixelVectors.h"
#include "flash/render/Vectorize.h"

#include <algorithm>
#include <cstring>

namespace flash::render
{
namespace
{

using wide::eightCoverages;
using wide::kLanes;
using wide::Words16;

using Ints4 = std::int32_t __attribute__((vector_size(16)));
using Ints8 = std::int32_t __attribute__((vector_size(32)));
using Bytes8 = std::uint8_t __attribute__((vector_size(8)));

[[gnu::always_inline]] inline void runningSum(Ints4& v)
{
    constexpr Ints4 kZero = {};
    v += __builtin_shufflevector(v, kZero, 4, 0, 1, 2);
    v += __builtin_shufflevector(v, kZero, 4, 4, 0, 1);
}

[[gnu::always_inline]] inline void toInside(Ints4& v, FillRule rule)
{
    const Ints4 sign = v >> 31;
    v = (v ^ sign) - sign;
    if (rule == FillRule::NonZero) {
        v = v < kFullArea ? v : Ints4{kFullArea, kFullArea, kFullArea, kFullArea};
        return;
    }
    v &= 2 * kFullArea - 1;
    const Ints4 other = 2 * kFullArea - v;
    v = v < other ? v : other;
}

// Four pixels further along a row: takes their numbers, clears them, and leaves the parts that are inside.
// @param carry the sum so far, in all four: it need not leave its register
[[gnu::always_inline]] inline void fourAreas(std::int32_t* sums, Ints4& carry, FillRule rule, Ints4& areas)
{
    constexpr Ints4 kZero = {};
    std::memcpy(&areas, sums, sizeof areas);
    std::memcpy(sums, &kZero, sizeof kZero);
    runningSum(areas);
    areas += carry;
    carry = __builtin_shufflevector(areas, areas, 3, 3, 3, 3);
    toInside(areas, rule);
}

// The coverages of a group of pixels.
template <FillRule kRule>
[[gnu::always_inline]] inline void eightBytes(std::int32_t* sums, Ints4& carry, std::uint8_t* to)
{
    Ints4 areas, further;
    fourAreas(sums, carry, kRule, areas);
    fourAreas(sums + 4, carry, kRule, further);
    areas = (areas + kSubpixels) >> (kSubpixelBits + 1);
    areas -= areas >> 8;
    further = (further + kSubpixels) >> (kSubpixelBits + 1);
    further -= further >> 8;
    const Ints8 both = __builtin_shufflevector(areas, further, 0, 1, 2, 3, 4, 5, 6, 7);
    const Bytes8 bytes = __builtin_convertvector(both, Bytes8);
    std::memcpy(to, &bytes, sizeof bytes);
}

template <FillRule kRule>
[[gnu::always_inline]] inline void coverageBytes(std::int32_t* sums, std::size_t count, std::int32_t& carry,
                                                 std::uint8_t* to)
{
    Ints4 sum = {carry, carry, carry, carry};
    // A group at a time: it is read in pieces as large, and what was written in smaller ones would have to
    // reach memory first.
    for (std::size_t i = 0; i < count; i += 8) eightBytes<kRule>(sums + i, sum, to + i);
    carry = sum[0];
}

// Eight coverages at `to`, and eight pixels laid over with one colour.
[[gnu::always_inline]] inline void layEight(std::uint32_t* to, std::uint64_t coverages, const Words16& source)
{
    for (std::size_t half = 0; half < 2; ++half) {
        Words16 part;
        wide::spreadCoverage(part, static_cast<std::uint32_t>(coverages >> 32 * half));
        part *= source;
        wide::div255(part);
        wide::layOver(to + half * kLanes, part);
    }
}

template <FillRule kRule>
[[gnu::always_inline]] inline void solidGroups(std::int32_t* sums, int count, std::int32_t& carry,
                                               std::uint32_t color, std::uint32_t* to, int room)
{
    const std::uint32_t four[kLanes] = {color, color, color, color};
    const bool opaque = alphaOf(color) == 255;
    Words16 source;
    wide::load(source, four);
    Ints4 sum = {carry, carry, carry, carry};
    for (int i = 0; i < count; i += 8) {
        std::uint8_t bytes[8];
        eightBytes<kRule>(sums + i, sum, bytes);
        const std::uint64_t coverages = eightCoverages(bytes);
        if (coverages == 0) continue;
        if (i + 8 > room) {
            for (int last = 0; i + last < room; ++last)
                to[i + last] = over(scale255(color, bytes[last]), to[i + last]);
        } else if (opaque && coverages == ~std::uint64_t{0}) {
            std::memcpy(to + i, four, sizeof four);
            std::memcpy(to + i + kLanes, four, sizeof four);
        } else {
            layEight(to + i, coverages, source);
        }
    }
    carry = sum[0];
}

} // namespace

ZORVEX_VECTORIZE
void takeCoverage(std::int32_t* sums, std::size_t count, std::int32_t& carry, FillRule rule, std::uint8_t* to)
{
    if (rule == FillRule::EvenOdd)
        coverageBytes<FillRule::EvenOdd>(sums, count, carry, to);
    else
        coverageBytes<FillRule::NonZero>(sums, count, carry, to);
}

ZORVEX_VECTORIZE
void takeAreas(std::int32_t* sums, std::size_t count, std::int32_t& carry, FillRule rule, std::int32_t* to,
               std::uint8_t* present)
{
    Ints4 sum = {carry, carry, carry, carry};
    for (std::size_t i = 0; i < count; i += 8) {
        Ints4 areas, further;
        fourAreas(sums + i, sum, rule, areas);
        fourAreas(sums + i + 4, sum, rule, further);
        std::memcpy(to + i, &areas, sizeof areas);
        std::memcpy(to + i + 4, &further, sizeof further);
        areas |= further;
        present[i / 8] = (areas[0] | areas[1] | areas[2] | areas[3]) != 0 ? 1 : 0;
    }
    carry = sum[0];
}

ZORVEX_VECTORIZE
void areasToBytes(const std::int32_t* areas, std::size_t count, std::uint8_t* to)
{
    for (std::size_t i = 0; i < count; ++i) to[i] = toByte(toCoverage(areas[i]));
}

ZORVEX_VECTORIZE
void laySolid(std::int32_t* sums, int count, std::int32_t& carry, FillRule rule, std::uint32_t color,
              std::uint32_t* to, int room)
{
    if (rule == FillRule::EvenOdd)
        solidGroups<FillRule::EvenOdd>(sums, count, carry, color, to, room);
    else
        solidGroups<FillRule::NonZero>(sums, count, carry, color, to, room);
}

ZORVEX_VECTORIZE
void giveShares(Given& given, const std::int32_t* areas, std::uint8_t* shares)
{
    for (int i = 0; i < 8; ++i) {
        const std::int32_t sum = std::min(given.areas[i] + areas[i], kFullArea);
        const std::int32_t parts = (sum * 255 + kFullArea / 2) / kFullArea;
        shares[i] = static_cast<std::uint8_t>(parts - given.parts[i]);
        given.areas[i] = sum;
        given.parts[i] = parts;
    }
}

} // namespace flash::render
