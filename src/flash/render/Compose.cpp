#include "flash/render/Compose.h"

#include "flash/render/ComposeWide.h"
#include "flash/render/Pixel.h"
#include "flash/render/PixelVectors.h"
#include "flash/render/Vectorize.h"
#include "flash/render/WidePixels.h"

#include <algorithm>
#include <cstring>

namespace flash::render
{
namespace
{

using wide::div255;
using wide::eightCoverages;
using wide::fourCoverages;
using wide::kLanes;
using wide::layOver;
using wide::load;
using wide::spreadCoverage;
using wide::store;
using wide::Words16;

// Whether all of eight pixels are.
[[gnu::always_inline]] inline bool areOpaque(const std::uint32_t* pixels)
{
    std::uint64_t pairs[4];
    std::memcpy(pairs, pixels, sizeof pairs);
    constexpr std::uint64_t kAlphas = 0xFF000000FF000000;
    return (pairs[0] & pairs[1] & pairs[2] & pairs[3] & kAlphas) == kAlphas;
}

} // namespace

void fillPixels(std::uint32_t* to, std::size_t count, std::uint32_t color)
{
#if defined(__GNUC__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
    // Processors know where this leads, and do not fetch what will be written over whole; it takes them a
    // moment to begin.
    constexpr std::size_t kMany = 512;
    if (count >= kMany) {
        __asm__ volatile("rep stosl" : "+D"(to), "+c"(count) : "a"(color) : "memory");
        return;
    }
#endif
    std::fill_n(to, count, color);
}

namespace plain
{

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

void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count)
{
    std::size_t i = 0;
    for (; i + 2 * kLanes <= count; i += 2 * kLanes) {
        const std::uint64_t coverages = eightCoverages(coverage + i);
        if (coverages == 0) continue;
        if (coverages == ~std::uint64_t{0} && areOpaque(source + i)) {
            std::memcpy(below + i, source + i, 2 * kLanes * sizeof(std::uint32_t));
            continue;
        }
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

} // namespace plain

void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color)
{
    if (wide8::hasWide())
        wide8::composeSolid(below, count, color);
    else
        plain::composeSolid(below, count, color);
}

void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count, std::uint32_t color)
{
    if (wide8::hasWide())
        wide8::composeSolid(below, coverage, count, color);
    else
        plain::composeSolid(below, coverage, count, color);
}

void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count)
{
    if (wide8::hasWide())
        wide8::composePixels(below, source, count);
    else
        plain::composePixels(below, source, count);
}

void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count)
{
    if (wide8::hasWide())
        wide8::composePixels(below, source, coverage, count);
    else
        plain::composePixels(below, source, coverage, count);
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
