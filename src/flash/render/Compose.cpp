#include "flash/render/Compose.h"

#include "flash/render/Pixel.h"
#include "flash/render/Vectorize.h"

#include <algorithm>
#include <cstring>

namespace flash::render
{
namespace
{

// Four pixels at a time, a channel in each lane. The compiler splits the wide vector where the processor's
// registers are narrower.
constexpr std::size_t kLanes = 4;
using Bytes16 = std::uint8_t __attribute__((vector_size(16)));
using Words16 = std::uint16_t __attribute__((vector_size(32)));

[[gnu::always_inline]] inline void load(Words16& to, const void* from)
{
    Bytes16 bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    to = __builtin_convertvector(bytes, Words16);
}

[[gnu::always_inline]] inline void store(void* to, const Words16& from)
{
    const Bytes16 bytes = __builtin_convertvector(from, Bytes16);
    std::memcpy(to, &bytes, sizeof bytes);
}

// value becomes value / 255, rounded.
[[gnu::always_inline]] inline void div255(Words16& value)
{
    value += 128;
    value = (value + (value >> 8)) >> 8;
}

// The alpha of each pixel in all four lanes of the pixel.
[[gnu::always_inline]] inline void spreadAlpha(Words16& to, const Words16& from)
{
    to = __builtin_shufflevector(from, from, 3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
}

[[gnu::always_inline]] inline void spreadCoverage(Words16& to, std::uint32_t four)
{
    Bytes16 bytes = {};
    std::memcpy(&bytes, &four, sizeof four);
    bytes = __builtin_shufflevector(bytes, bytes, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3);
    to = __builtin_convertvector(bytes, Words16);
}

[[gnu::always_inline]] inline void layOver(std::uint32_t* below, const Words16& source)
{
    Words16 under;
    Words16 alpha;
    load(under, below);
    spreadAlpha(alpha, source);
    under *= 255 - alpha;
    div255(under);
    under += source;
    store(below, under);
}

[[gnu::always_inline]] inline std::uint32_t fourCoverages(const std::uint8_t* coverage)
{
    std::uint32_t four;
    std::memcpy(&four, coverage, sizeof four);
    return four;
}

[[gnu::always_inline]] inline std::uint64_t eightCoverages(const std::uint8_t* coverage)
{
    std::uint64_t eight;
    std::memcpy(&eight, coverage, sizeof eight);
    return eight;
}

} // namespace

ZORVEX_VECTORIZE
void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color)
{
    if (alphaOf(color) == 255) {
        std::fill_n(below, count, color);
        return;
    }
    if (color == 0) return;
    const std::uint32_t four[kLanes] = {color, color, color, color};
    Words16 source;
    load(source, four);
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) layOver(below + i, source);
    for (; i < count; ++i) below[i] = over(color, below[i]);
}

ZORVEX_VECTORIZE
void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count, std::uint32_t color)
{
    const std::uint32_t four[kLanes] = {color, color, color, color};
    Words16 source;
    load(source, four);
    std::size_t i = 0;
    // Only what eight pixels have in common is asked: whether four are covered is hard to foretell, and what
    // is not covered at all, or wholly, comes out right without asking.
    for (; i + 2 * kLanes <= count; i += 2 * kLanes) {
        const std::uint64_t coverages = eightCoverages(coverage + i);
        if (coverages == 0) continue;
        if (coverages == ~std::uint64_t{0} && alphaOf(color) == 255) {
            std::memcpy(below + i, four, sizeof four);
            std::memcpy(below + i + kLanes, four, sizeof four);
            continue;
        }
        for (std::size_t half = 0; half < 2; ++half) {
            Words16 part;
            spreadCoverage(part, static_cast<std::uint32_t>(coverages >> 32 * half));
            part *= source;
            div255(part);
            layOver(below + i + half * kLanes, part);
        }
    }
    for (; i + kLanes <= count; i += kLanes) {
        Words16 part;
        spreadCoverage(part, fourCoverages(coverage + i));
        part *= source;
        div255(part);
        layOver(below + i, part);
    }
    for (; i < count; ++i) below[i] = over(scale255(color, coverage[i]), below[i]);
}

ZORVEX_VECTORIZE
void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count)
{
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        const std::uint32_t all = source[i] & source[i + 1] & source[i + 2] & source[i + 3];
        if (alphaOf(all) == 255) {
            std::memcpy(below + i, source + i, kLanes * sizeof(std::uint32_t));
            continue;
        }
        Words16 four;
        load(four, source + i);
        layOver(below + i, four);
    }
    for (; i < count; ++i) below[i] = over(source[i], below[i]);
}

ZORVEX_VECTORIZE
void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count)
{
    std::size_t i = 0;
    for (; i + 2 * kLanes <= count; i += 2 * kLanes) {
        const std::uint64_t coverages = eightCoverages(coverage + i);
        if (coverages == 0) continue;
        for (std::size_t half = 0; half < 2; ++half) {
            Words16 four;
            Words16 part;
            load(four, source + i + half * kLanes);
            spreadCoverage(part, static_cast<std::uint32_t>(coverages >> 32 * half));
            part *= four;
            div255(part);
            layOver(below + i + half * kLanes, part);
        }
    }
    for (; i + kLanes <= count; i += kLanes) {
        Words16 four;
        Words16 part;
        load(four, source + i);
        spreadCoverage(part, fourCoverages(coverage + i));
        part *= four;
        div255(part);
        layOver(below + i, part);
    }
    for (; i < count; ++i) below[i] = over(scale255(source[i], coverage[i]), below[i]);
}

ZORVEX_VECTORIZE
void addSolid(std::uint16_t* sums, const std::uint8_t* coverage, std::size_t count, std::uint32_t color)
{
    const std::uint32_t four[kLanes] = {color, color, color, color};
    Words16 source;
    load(source, four);
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Words16 part;
        Words16 sum;
        spreadCoverage(part, fourCoverages(coverage + i));
        std::memcpy(&sum, sums + 4 * i, sizeof sum);
        sum += part * source;
        std::memcpy(sums + 4 * i, &sum, sizeof sum);
    }
    for (; i < count; ++i)
        for (unsigned c = 0; c < 4; ++c)
            sums[4 * i + c] =
                static_cast<std::uint16_t>(sums[4 * i + c] + (color >> 8 * c & 0xFF) * coverage[i]);
}

ZORVEX_VECTORIZE
void addPixels(std::uint16_t* sums, const std::uint8_t* coverage, std::size_t count,
               const std::uint32_t* source)
{
    for (std::size_t i = 0; i < count; ++i)
        for (unsigned c = 0; c < 4; ++c)
            sums[4 * i + c] =
                static_cast<std::uint16_t>(sums[4 * i + c] + (source[i] >> 8 * c & 0xFF) * coverage[i]);
}

ZORVEX_VECTORIZE
void takeSums(std::uint32_t* to, const std::uint16_t* sums, std::size_t count)
{
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Words16 sum;
        std::memcpy(&sum, sums + 4 * i, sizeof sum);
        div255(sum);
        store(to + i, sum);
    }
    for (; i < count; ++i)
        to[i] = packPixel(flash::render::div255(sums[4 * i + 3]), flash::render::div255(sums[4 * i + 2]),
                          flash::render::div255(sums[4 * i + 1]), flash::render::div255(sums[4 * i]));
}

ZORVEX_VECTORIZE
void scaleCoverage(std::uint8_t* coverage, const std::uint8_t* factors, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        coverage[i] =
            static_cast<std::uint8_t>(flash::render::div255(std::uint32_t{coverage[i]} * factors[i]));
}

ZORVEX_VECTORIZE
void uniteCoverage(std::uint8_t* coverage, const std::uint8_t* others, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t both = flash::render::div255(std::uint32_t{coverage[i]} * others[i]);
        coverage[i] = static_cast<std::uint8_t>(coverage[i] + others[i] - both);
    }
}

} // namespace flash::render
