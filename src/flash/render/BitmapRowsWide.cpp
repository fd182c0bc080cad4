#include "flash/render/BitmapRows.h"
#include "flash/render/WidePixels.h"

#include <cstdlib>

// The same as BitmapRows.cpp does, eight pixels at a time.
namespace flash::render
{

#ifdef ZORVEX_HAS_WIDE

namespace
{

using wide8::Channels;
using wide8::kGroup;

// Places are worked with in 32 bits: whether those of a row, and some beyond its end, fit.
bool fits(std::int64_t at, std::int64_t step, std::size_t count)
{
    constexpr std::int64_t kFar = std::int64_t{1} << 30, kSteep = std::int64_t{1} << 26;
    return std::abs(at) < kFar && std::abs(step) < kSteep &&
           std::abs(at + step * static_cast<std::int64_t>(count + kGroup)) < kFar;
}

bool isWieldy(const PixelSource& source)
{
    constexpr int kMost = 1 << 14;
    return source.width >= 2 && source.width < kMost && source.height < kMost;
}

ZORVEX_WIDE_INLINE __m256i clamped(__m256i v, int last)
{
    return _mm256_min_epi32(_mm256_max_epi32(v, _mm256_setzero_si256()), _mm256_set1_epi32(last));
}

// Of numbers that are out by less than `size`.
ZORVEX_WIDE_INLINE __m256i wrapped(__m256i v, int size)
{
    const __m256i all = _mm256_set1_epi32(size);
    v = _mm256_add_epi32(v, _mm256_and_si256(all, _mm256_cmpgt_epi32(_mm256_setzero_si256(), v)));
    return _mm256_sub_epi32(v, _mm256_andnot_si256(_mm256_cmpgt_epi32(all, v), all));
}

ZORVEX_WIDE_INLINE __m256i placesFrom(std::int64_t at, std::int64_t step)
{
    const __m256i lanes = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    return _mm256_add_epi32(_mm256_set1_epi32(static_cast<int>(at)),
                            _mm256_mullo_epi32(lanes, _mm256_set1_epi32(static_cast<int>(step))));
}

ZORVEX_WIDE_INLINE __m256i gathered(const PixelSource& source, __m256i x, __m256i y)
{
    const __m256i at = _mm256_add_epi32(_mm256_mullo_epi32(y, _mm256_set1_epi32(source.width)), x);
    return _mm256_i32gather_epi32(reinterpret_cast<const int*>(source.pixels), at, sizeof *source.pixels);
}

// Pixels and their right neighbours.
struct Pairs {
    __m256i left, right;
};

ZORVEX_WIDE_INLINE Pairs pairsAt(const PixelSource& source, __m256i x, __m256i y)
{
    __m256i at = _mm256_add_epi32(_mm256_mullo_epi32(y, _mm256_set1_epi32(source.width)), x);
    // So that what is shuffled out of them, half by half, stands in order.
    at = _mm256_permute4x64_epi64(at, _MM_SHUFFLE(3, 1, 2, 0));
    const auto* pixels = reinterpret_cast<const long long*>(source.pixels);
    const __m256 outer = _mm256_castsi256_ps(
        _mm256_i32gather_epi64(pixels, _mm256_castsi256_si128(at), sizeof *source.pixels));
    const __m256 inner = _mm256_castsi256_ps(
        _mm256_i32gather_epi64(pixels, _mm256_extracti128_si256(at, 1), sizeof *source.pixels));
    return {_mm256_castps_si256(_mm256_shuffle_ps(outer, inner, _MM_SHUFFLE(2, 0, 2, 0))),
            _mm256_castps_si256(_mm256_shuffle_ps(outer, inner, _MM_SHUFFLE(3, 1, 3, 1)))};
}

// 0..256 in each lane, for all channels of its pixel.
ZORVEX_WIDE_INLINE Channels spreadParts(__m256i parts)
{
    parts = _mm256_or_si256(parts, _mm256_slli_epi32(parts, 16));
    return {_mm256_unpacklo_epi32(parts, parts), _mm256_unpackhi_epi32(parts, parts)};
}

ZORVEX_WIDE_INLINE __m256i mixed(__m256i from, __m256i to, __m256i part)
{
    const __m256i rest = _mm256_sub_epi16(_mm256_set1_epi16(256), part);
    const __m256i sum = _mm256_add_epi16(_mm256_mullo_epi16(from, rest), _mm256_mullo_epi16(to, part));
    return _mm256_srli_epi16(_mm256_add_epi16(sum, _mm256_set1_epi16(128)), 8);
}

ZORVEX_WIDE_INLINE Channels mixed(const Channels& from, const Channels& to, const Channels& part)
{
    return {mixed(from.first, to.first, part.first), mixed(from.second, to.second, part.second)};
}

ZORVEX_WIDE_INLINE __m256i partOf(__m256i at)
{
    return _mm256_and_si256(_mm256_srli_epi32(at, kPlaceBits - 8), _mm256_set1_epi32(0xFF));
}

template <Edges kEdges>
ZORVEX_WIDE_INLINE __m256i smoothGroup(const PixelSource& source, __m256i u, __m256i v)
{
    const __m256i one = _mm256_set1_epi32(1);
    __m256i column = _mm256_srai_epi32(u, kPlaceBits), line = _mm256_srai_epi32(v, kPlaceBits);
    __m256i partX = partOf(u);
    const Channels partY = spreadParts(partOf(v));
    Pairs upper, lower;
    if constexpr (kEdges == Edges::Clamp) {
        // Beyond the border a pixel has itself for a neighbour: the pair at the border, all of it one pixel.
        const int last = source.width - 2;
        partX = _mm256_andnot_si256(_mm256_cmpgt_epi32(_mm256_setzero_si256(), column), partX);
        partX = _mm256_blendv_epi8(partX, _mm256_set1_epi32(256),
                                   _mm256_cmpgt_epi32(column, _mm256_set1_epi32(last)));
        column = clamped(column, last);
        const int bottom = source.height - 1;
        upper = pairsAt(source, column, clamped(line, bottom));
        lower = pairsAt(source, column, clamped(_mm256_add_epi32(line, one), bottom));
    } else {
        column = wrapped(column, source.width);
        line = wrapped(line, source.height);
        const __m256i right = wrapped(_mm256_add_epi32(column, one), source.width);
        const __m256i below = wrapped(_mm256_add_epi32(line, one), source.height);
        upper = {gathered(source, column, line), gathered(source, right, line)};
        lower = {gathered(source, column, below), gathered(source, right, below)};
    }
    const Channels across = spreadParts(partX);
    return wide8::pixelsOf(mixed(mixed(wide8::channelsOf(upper.left), wide8::channelsOf(upper.right), across),
                                 mixed(wide8::channelsOf(lower.left), wide8::channelsOf(lower.right), across),
                                 partY));
}

template <Edges kEdges>
ZORVEX_WIDE_INLINE __m256i nearestGroup(const PixelSource& source, __m256i u, __m256i v)
{
    const __m256i column = _mm256_srai_epi32(u, kPlaceBits), line = _mm256_srai_epi32(v, kPlaceBits);
    if constexpr (kEdges == Edges::Clamp)
        return gathered(source, clamped(column, source.width - 1), clamped(line, source.height - 1));
    else
        return gathered(source, wrapped(column, source.width), wrapped(line, source.height));
}

// Places of tiles are kept within the first one, so that those of a group are out by less than a tile.
std::int64_t withinTile(std::int64_t at, int size)
{
    const std::int64_t tile = std::int64_t{size} << kPlaceBits;
    if (at >= 0 && at < tile) return at;
    at %= tile;
    return at < 0 ? at + tile : at;
}

template <Edges kEdges, bool kSmooth>
ZORVEX_WIDE void groups(const PixelSource& source, BitmapRow row, std::size_t count, std::uint32_t* to)
{
    constexpr auto kStep = static_cast<std::int64_t>(kGroup);
    for (std::size_t done = 0; done < count; done += kGroup) {
        if constexpr (kEdges == Edges::Repeat) {
            row.u = withinTile(row.u, source.width);
            row.v = withinTile(row.v, source.height);
        }
        const __m256i u = placesFrom(row.u, row.stepU), v = placesFrom(row.v, row.stepV);
        __m256i pixels;
        if constexpr (kSmooth)
            pixels = smoothGroup<kEdges>(source, u, v);
        else
            pixels = nearestGroup<kEdges>(source, u, v);
        if (count - done >= kGroup)
            wide8::store(to + done, pixels);
        else
            wide8::store(to + done, wide8::firstOf(count - done), pixels);
        row.u += kStep * row.stepU;
        row.v += kStep * row.stepV;
    }
}

template <bool kSmooth>
void wideRow(const PixelSource& source, Edges edges, const BitmapRow& row, std::size_t count,
             std::uint32_t* to)
{
    if (isWieldy(source)) {
        const auto tileFits = [](std::int64_t step, int size) {
            return std::abs(step) * static_cast<std::int64_t>(kGroup) < (std::int64_t{size} << kPlaceBits);
        };
        if (edges == Edges::Clamp) {
            if (fits(row.u, row.stepU, count) && fits(row.v, row.stepV, count))
                return groups<Edges::Clamp, kSmooth>(source, row, count, to);
        } else if (tileFits(row.stepU, source.width) && tileFits(row.stepV, source.height)) {
            return groups<Edges::Repeat, kSmooth>(source, row, count, to);
        }
    }
    const BitmapLoops plain = plainBitmapLoops();
    (kSmooth ? plain.smooth : plain.nearest)(source, edges, row, count, to);
}

} // namespace

BitmapLoops wideBitmapLoops()
{
    if (!wide8::hasWide()) return {};
    return {wideRow<false>, wideRow<true>};
}

#else

BitmapLoops wideBitmapLoops() { return {}; }

#endif

} // namespace flash::render
