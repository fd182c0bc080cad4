#include "flash/render/CellSums.h"

#include "flash/render/Pixel.h"
#include "flash/render/PixelVectors.h"
#include "flash/render/Vectorize.h"

#include <algorithm>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace flash::render
{
namespace
{

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

// The coverages, 0..255, of a group of pixels.
template <FillRule kRule>
[[gnu::always_inline]] inline void eightCoverages(std::int32_t* sums, Ints4& carry, Ints4& first,
                                                  Ints4& second)
{
    fourAreas(sums, carry, kRule, first);
    fourAreas(sums + 4, carry, kRule, second);
    first = (first + kSubpixels) >> (kSubpixelBits + 1);
    first -= first >> 8;
    second = (second + kSubpixels) >> (kSubpixelBits + 1);
    second -= second >> 8;
}

[[gnu::always_inline]] inline void toBytes(const Ints4& first, const Ints4& second, std::uint8_t* to)
{
#ifdef __SSE2__
    // What the compiler makes of the conversion goes pixel by pixel.
    const __m128i words =
        _mm_packs_epi32(reinterpret_cast<const __m128i&>(first), reinterpret_cast<const __m128i&>(second));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(words, words));
#else
    const Ints8 both = __builtin_shufflevector(first, second, 0, 1, 2, 3, 4, 5, 6, 7);
    const Bytes8 bytes = __builtin_convertvector(both, Bytes8);
    std::memcpy(to, &bytes, sizeof bytes);
#endif
}

template <FillRule kRule>
[[gnu::always_inline]] inline void coverageBytes(std::int32_t* sums, std::size_t count, std::int32_t& carry,
                                                 std::uint8_t* to)
{
    Ints4 sum = {carry, carry, carry, carry};
    // A group at a time: it is read in pieces as large, and what was written in smaller ones would have to
    // reach memory first.
    for (std::size_t i = 0; i < count; i += 8) {
        Ints4 first, second;
        eightCoverages<kRule>(sums + i, sum, first, second);
        toBytes(first, second, to + i);
    }
    carry = sum[0];
}

// Lays `source`, four times the same pixel, over four pixels.
[[gnu::always_inline]] inline void layFour(std::uint32_t* to, const Ints4& coverages, const Words16& source)
{
    const Ints4 twice = coverages | coverages << 16;
    const Ints8 each = __builtin_shufflevector(twice, twice, 0, 0, 1, 1, 2, 2, 3, 3);
    Words16 part;
    std::memcpy(&part, &each, sizeof part);
    part *= source;
    wide::div255(part);
    wide::layOver(to, part);
}

// Whether all of eight numbers are `value`.
[[gnu::always_inline]] inline bool areAll(const Ints4& first, const Ints4& second, std::int32_t value)
{
    const Ints4 different = (first ^ value) | (second ^ value);
    std::uint64_t halves[2];
    std::memcpy(halves, &different, sizeof halves);
    return (halves[0] | halves[1]) == 0;
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
        Ints4 first, second;
        eightCoverages<kRule>(sums + i, sum, first, second);
        if (areAll(first, second, 0)) continue;
        if (i + 8 > room) {
            std::uint8_t bytes[8];
            toBytes(first, second, bytes);
            for (int last = 0; i + last < room; ++last)
                to[i + last] = over(scale255(color, bytes[last]), to[i + last]);
        } else if (opaque && areAll(first, second, 255)) {
            std::memcpy(to + i, four, sizeof four);
            std::memcpy(to + i + kLanes, four, sizeof four);
        } else {
            layFour(to + i, first, source);
            layFour(to + i + kLanes, second, source);
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
