#include "flash/render/CellSums.h"

#include "flash/render/Pixel.h"
#include "flash/render/PixelVectors.h"
#include "flash/render/Vectorize.h"
#include "flash/render/WidePixels.h"

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
using Words8 = std::int16_t __attribute__((vector_size(16)));
using Bytes8 = std::uint8_t __attribute__((vector_size(8)));

[[gnu::always_inline]] inline void addUp(Ints4& v)
{
    constexpr Ints4 kZero = {};
    v += __builtin_shufflevector(v, kZero, 4, 0, 1, 2);
    v += __builtin_shufflevector(v, kZero, 4, 4, 0, 1);
}

[[gnu::always_inline]] inline void addUp(Words8& v)
{
    constexpr Words8 kZero = {};
    v += __builtin_shufflevector(v, kZero, 8, 0, 1, 2, 3, 4, 5, 6);
    v += __builtin_shufflevector(v, kZero, 8, 8, 0, 1, 2, 3, 4, 5);
    v += __builtin_shufflevector(v, kZero, 8, 8, 8, 8, 0, 1, 2, 3);
}

[[gnu::always_inline]] inline void spreadLast(Ints4& to, const Ints4& from)
{
    to = __builtin_shufflevector(from, from, 3, 3, 3, 3);
}
[[gnu::always_inline]] inline void spreadLast(Words8& to, const Words8& from)
{
    to = __builtin_shufflevector(from, from, 7, 7, 7, 7, 7, 7, 7, 7);
}

// @tparam kFull the whole pixel
template <int kFull, class Vector>
[[gnu::always_inline]] inline void toInside(Vector& v, FillRule rule)
{
    const Vector sign = v >> static_cast<int>(8 * sizeof(v[0]) - 1);
    v = (v ^ sign) - sign;
    if (rule == FillRule::NonZero) {
        const Vector full = Vector{} + kFull;
        v = v < full ? v : full;
        return;
    }
    v &= 2 * kFull - 1;
    const Vector other = 2 * kFull - v;
    v = v < other ? v : other;
}

// As many pixels further along a row: takes their numbers, clears them, and leaves the parts that are inside.
// @param carry the sum so far, in all lanes: it need not leave its register
template <class Sum, class Vector>
[[gnu::always_inline]] inline void takeInside(Sum* sums, Vector& carry, FillRule rule, Vector& parts)
{
    constexpr Vector kZero = {};
    std::memcpy(&parts, sums, sizeof parts);
    std::memcpy(sums, &kZero, sizeof kZero);
    addUp(parts);
    parts += carry;
    spreadLast(carry, parts);
    toInside<(kFullArea >> kUnitBits<Sum>)>(parts, rule);
}

// How the numbers of a group of pixels are worked with.
template <class Sum>
struct Group;

template <>
struct Group<std::int32_t> {
    using Carry = Ints4;
    [[gnu::always_inline]] static void coverage(std::int32_t* sums, Ints4& carry, FillRule rule, Words8& to)
    {
        Ints4 first, second;
        takeInside(sums, carry, rule, first);
        takeInside(sums + 4, carry, rule, second);
        first = (first + kSubpixels) >> (kSubpixelBits + 1);
        second = (second + kSubpixels) >> (kSubpixelBits + 1);
#ifdef __SSE2__
        // What the compiler makes of the conversion goes pixel by pixel.
        const __m128i words = _mm_packs_epi32(reinterpret_cast<const __m128i&>(first),
                                              reinterpret_cast<const __m128i&>(second));
        std::memcpy(&to, &words, sizeof to);
#else
        const Ints8 both = __builtin_shufflevector(first, second, 0, 1, 2, 3, 4, 5, 6, 7);
        to = __builtin_convertvector(both, Words8);
#endif
        to -= to >> 8;
    }
    [[gnu::always_inline]] static void areas(std::int32_t* sums, Ints4& carry, FillRule rule, Ints4& first,
                                             Ints4& second)
    {
        takeInside(sums, carry, rule, first);
        takeInside(sums + 4, carry, rule, second);
    }
};

template <>
struct Group<std::int16_t> {
    using Carry = Words8;
    static constexpr int kToCoverage = kUnitBits<std::int16_t> - (kSubpixelBits + 1);
    [[gnu::always_inline]] static void coverage(std::int16_t* sums, Words8& carry, FillRule rule, Words8& to)
    {
        takeInside(sums, carry, rule, to);
        to <<= kToCoverage;
        to -= to >> 8;
    }
    [[gnu::always_inline]] static void areas(std::int16_t* sums, Words8& carry, FillRule rule, Ints4& first,
                                             Ints4& second)
    {
        Words8 parts;
        takeInside(sums, carry, rule, parts);
        constexpr Words8 kZero = {};
        const Words8 low = __builtin_shufflevector(parts, kZero, 0, 8, 1, 9, 2, 10, 3, 11);
        const Words8 high = __builtin_shufflevector(parts, kZero, 4, 12, 5, 13, 6, 14, 7, 15);
        std::memcpy(&first, &low, sizeof first);
        std::memcpy(&second, &high, sizeof second);
        first <<= kUnitBits<std::int16_t>;
        second <<= kUnitBits<std::int16_t>;
    }
};

[[gnu::always_inline]] inline void toBytes(const Words8& coverages, std::uint8_t* to)
{
#ifdef __SSE2__
    const auto& words = reinterpret_cast<const __m128i&>(coverages);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(words, words));
#else
    const Bytes8 bytes = __builtin_convertvector(coverages, Bytes8);
    std::memcpy(to, &bytes, sizeof bytes);
#endif
}

template <FillRule kRule, class Sum>
[[gnu::always_inline]] inline void coverageBytes(Sum* sums, std::size_t count, std::int32_t& carry,
                                                 std::uint8_t* to)
{
    typename Group<Sum>::Carry sum = typename Group<Sum>::Carry{} + static_cast<Sum>(carry);
    // A group at a time: it is read in pieces as large, and what was written in smaller ones would have to
    // reach memory first.
    for (std::size_t i = 0; i < count; i += 8) {
        Words8 coverages;
        Group<Sum>::coverage(sums + i, sum, kRule, coverages);
        toBytes(coverages, to + i);
    }
    carry = sum[0];
}

// Lays `source`, four times the same pixel, over four pixels.
// @param twice their coverages, each twice
[[gnu::always_inline]] inline void layFour(std::uint32_t* to, const Words8& twice, const Words16& source)
{
    Ints4 pairs;
    std::memcpy(&pairs, &twice, sizeof pairs);
    const Ints8 each = __builtin_shufflevector(pairs, pairs, 0, 0, 1, 1, 2, 2, 3, 3);
    Words16 part;
    std::memcpy(&part, &each, sizeof part);
    part *= source;
    wide::div255(part);
    wide::layOver(to, part);
}

// Whether all of eight numbers are `value`.
[[gnu::always_inline]] inline bool areAll(const Words8& numbers, std::int16_t value)
{
    const Words8 different = numbers ^ value;
    std::uint64_t halves[2];
    std::memcpy(halves, &different, sizeof halves);
    return (halves[0] | halves[1]) == 0;
}

template <FillRule kRule, class Sum>
[[gnu::always_inline]] inline void solidGroups(Sum* sums, int count, std::int32_t& carry, std::uint32_t color,
                                               std::uint32_t* to, int room)
{
    const std::uint32_t four[kLanes] = {color, color, color, color};
    const bool opaque = alphaOf(color) == 255;
    Words16 source;
    wide::load(source, four);
    typename Group<Sum>::Carry sum = typename Group<Sum>::Carry{} + static_cast<Sum>(carry);
    for (int i = 0; i < count; i += 8) {
        Words8 coverages;
        Group<Sum>::coverage(sums + i, sum, kRule, coverages);
        if (areAll(coverages, 0)) continue;
        if (i + 8 > room) {
            std::uint8_t bytes[8];
            toBytes(coverages, bytes);
            for (int last = 0; i + last < room; ++last)
                to[i + last] = over(scale255(color, bytes[last]), to[i + last]);
        } else if (opaque && areAll(coverages, 255)) {
            std::memcpy(to + i, four, sizeof four);
            std::memcpy(to + i + kLanes, four, sizeof four);
        } else {
            layFour(to + i, __builtin_shufflevector(coverages, coverages, 0, 0, 1, 1, 2, 2, 3, 3), source);
            layFour(to + i + kLanes, __builtin_shufflevector(coverages, coverages, 4, 4, 5, 5, 6, 6, 7, 7),
                    source);
        }
    }
    carry = sum[0];
}

#ifdef ZORVEX_HAS_WIDE
// The same with the whole group of pixels in a register.
template <FillRule kRule, class Sum>
ZORVEX_WIDE void solidGroupsWide(Sum* sums, int count, std::int32_t& carry, std::uint32_t color,
                                 std::uint32_t* to, int room)
{
    const __m256i full = _mm256_set1_epi32(static_cast<int>(color));
    const wide8::Channels source = wide8::channelsOf(full);
    const bool opaque = alphaOf(color) == 255;
    typename Group<Sum>::Carry sum = typename Group<Sum>::Carry{} + static_cast<Sum>(carry);
    for (int i = 0; i < count; i += 8) {
        Words8 coverages;
        Group<Sum>::coverage(sums + i, sum, kRule, coverages);
        const auto& words = reinterpret_cast<const __m128i&>(coverages);
        const __m128i bytes = _mm_packus_epi16(words, words);
        const std::int64_t eight = _mm_cvtsi128_si64(bytes);
        if (eight == 0) continue;
        if (i + 8 > room) {
            const __m256i wanted = wide8::firstOf(static_cast<std::size_t>(std::max(room - i, 0)));
            const wide8::Channels part = wide8::scaled(source, wide8::spreadCoverage(bytes));
            wide8::store(to + i, wanted, wide8::over(part, wide8::load(to + i, wanted)));
        } else if (opaque && eight == -1) {
            wide8::store(to + i, full);
        } else {
            const wide8::Channels part = wide8::scaled(source, wide8::spreadCoverage(bytes));
            wide8::store(to + i, wide8::over(part, wide8::load(to + i)));
        }
    }
    carry = sum[0];
}
#endif

// @returns false where there is no such processor
template <class Sum>
bool laySolidWide([[maybe_unused]] Sum* sums, [[maybe_unused]] int count,
                  [[maybe_unused]] std::int32_t& carry, [[maybe_unused]] FillRule rule,
                  [[maybe_unused]] std::uint32_t color, [[maybe_unused]] std::uint32_t* to,
                  [[maybe_unused]] int room)
{
#ifdef ZORVEX_HAS_WIDE
    if (!wide8::hasWide()) return false;
    if (rule == FillRule::EvenOdd)
        solidGroupsWide<FillRule::EvenOdd>(sums, count, carry, color, to, room);
    else
        solidGroupsWide<FillRule::NonZero>(sums, count, carry, color, to, room);
    return true;
#else
    return false;
#endif
}

template <class Sum>
[[gnu::always_inline]] inline void groupAreas(Sum* sums, std::size_t count, std::int32_t& carry,
                                              FillRule rule, std::int32_t* to, std::uint8_t* present)
{
    typename Group<Sum>::Carry sum = typename Group<Sum>::Carry{} + static_cast<Sum>(carry);
    for (std::size_t i = 0; i < count; i += 8) {
        Ints4 first, second;
        Group<Sum>::areas(sums + i, sum, rule, first, second);
        std::memcpy(to + i, &first, sizeof first);
        std::memcpy(to + i + 4, &second, sizeof second);
        first |= second;
        present[i / 8] = (first[0] | first[1] | first[2] | first[3]) != 0 ? 1 : 0;
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
void takeCoverage(std::int16_t* sums, std::size_t count, std::int32_t& carry, FillRule rule, std::uint8_t* to)
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
    groupAreas(sums, count, carry, rule, to, present);
}

ZORVEX_VECTORIZE
void takeAreas(std::int16_t* sums, std::size_t count, std::int32_t& carry, FillRule rule, std::int32_t* to,
               std::uint8_t* present)
{
    groupAreas(sums, count, carry, rule, to, present);
}

void laySolid(std::int32_t* sums, int count, std::int32_t& carry, FillRule rule, std::uint32_t color,
              std::uint32_t* to, int room)
{
    if (laySolidWide(sums, count, carry, rule, color, to, room)) return;
    if (rule == FillRule::EvenOdd)
        solidGroups<FillRule::EvenOdd>(sums, count, carry, color, to, room);
    else
        solidGroups<FillRule::NonZero>(sums, count, carry, color, to, room);
}

void laySolid(std::int16_t* sums, int count, std::int32_t& carry, FillRule rule, std::uint32_t color,
              std::uint32_t* to, int room)
{
    if (laySolidWide(sums, count, carry, rule, color, to, room)) return;
    if (rule == FillRule::EvenOdd)
        solidGroups<FillRule::EvenOdd>(sums, count, carry, color, to, room);
    else
        solidGroups<FillRule::NonZero>(sums, count, carry, color, to, room);
}

ZORVEX_VECTORIZE
void areasToBytes(const std::int32_t* areas, std::size_t count, std::uint8_t* to)
{
    for (std::size_t i = 0; i < count; ++i) to[i] = toByte(toCoverage(areas[i]));
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
