#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Eight pixels at a time, for processors with AVX2. What is compiled for them is marked ZORVEX_WIDE and is
// only to be reached after hasWide(). Fused multiplication, which rounds once instead of twice, stays off, so
// that no pixel depends on the processor.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__)
#define ZORVEX_HAS_WIDE 1
#define ZORVEX_WIDE [[gnu::target("avx2")]]
#define ZORVEX_WIDE_INLINE [[gnu::target("avx2"), gnu::always_inline]] inline
#include <immintrin.h>

namespace flash::render::wide8
{

inline bool hasWide() { return __builtin_cpu_supports("avx2") != 0; }

constexpr std::size_t kGroup = 8;

ZORVEX_WIDE_INLINE __m256i load(const std::uint32_t* from)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
}
ZORVEX_WIDE_INLINE void store(std::uint32_t* to, __m256i pixels)
{
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), pixels);
}

// The first `count` of a group, to load and store by.
ZORVEX_WIDE_INLINE __m256i firstOf(std::size_t count)
{
    return _mm256_cmpgt_epi32(_mm256_set1_epi32(static_cast<int>(count)),
                              _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7));
}
ZORVEX_WIDE_INLINE __m256i load(const std::uint32_t* from, __m256i which)
{
    return _mm256_maskload_epi32(reinterpret_cast<const int*>(from), which);
}
ZORVEX_WIDE_INLINE void store(std::uint32_t* to, __m256i which, __m256i pixels)
{
    _mm256_maskstore_epi32(reinterpret_cast<int*>(to), which, pixels);
}

// Channels in 16 bits each: pixels 0, 1, 4 and 5, and the others, as the processor unpacks them.
struct Channels {
    __m256i first, second;
};

ZORVEX_WIDE_INLINE Channels channelsOf(__m256i pixels)
{
    const __m256i zero = _mm256_setzero_si256();
    return {_mm256_unpacklo_epi8(pixels, zero), _mm256_unpackhi_epi8(pixels, zero)};
}

ZORVEX_WIDE_INLINE __m256i pixelsOf(const Channels& c) { return _mm256_packus_epi16(c.first, c.second); }

// value / 255, rounded.
ZORVEX_WIDE_INLINE __m256i div255(__m256i value)
{
    value = _mm256_add_epi16(value, _mm256_set1_epi16(128));
    return _mm256_srli_epi16(_mm256_add_epi16(value, _mm256_srli_epi16(value, 8)), 8);
}

// All channels times what stands in the same places, of 255.
ZORVEX_WIDE_INLINE Channels scaled(const Channels& c, const Channels& by)
{
    return {div255(_mm256_mullo_epi16(c.first, by.first)), div255(_mm256_mullo_epi16(c.second, by.second))};
}

// The coverage of each pixel, in a byte, for all its channels.
ZORVEX_WIDE_INLINE Channels spreadCoverage(__m128i eight)
{
    const __m256i all = _mm256_broadcastq_epi64(eight);
    constexpr char kNo = static_cast<char>(0x80);
    const __m256i first = _mm256_setr_epi8(0, kNo, 0, kNo, 0, kNo, 0, kNo, 1, kNo, 1, kNo, 1, kNo, 1, kNo, 4,
                                           kNo, 4, kNo, 4, kNo, 4, kNo, 5, kNo, 5, kNo, 5, kNo, 5, kNo);
    const __m256i two = _mm256_set1_epi16(2);
    // A shuffle takes no notice of what is added to places it leaves empty.
    return {_mm256_shuffle_epi8(all, first), _mm256_shuffle_epi8(all, _mm256_add_epi16(first, two))};
}

ZORVEX_WIDE_INLINE Channels spreadCoverage(std::uint64_t eight)
{
    return spreadCoverage(_mm_cvtsi64_si128(static_cast<long long>(eight)));
}

// 255 less each pixel's alpha, for all its channels.
ZORVEX_WIDE_INLINE __m256i without(__m256i channels)
{
    constexpr char kNo = static_cast<char>(0x80);
    const __m256i alphas =
        _mm256_setr_epi8(6, kNo, 6, kNo, 6, kNo, 6, kNo, 14, kNo, 14, kNo, 14, kNo, 14, kNo, 6, kNo, 6, kNo,
                         6, kNo, 6, kNo, 14, kNo, 14, kNo, 14, kNo, 14, kNo);
    return _mm256_sub_epi16(_mm256_set1_epi16(255), _mm256_shuffle_epi8(channels, alphas));
}

// `source` over `below`.
ZORVEX_WIDE_INLINE __m256i over(const Channels& source, __m256i below)
{
    const Channels under = scaled(channelsOf(below), {without(source.first), without(source.second)});
    return pixelsOf(
        {_mm256_add_epi16(under.first, source.first), _mm256_add_epi16(under.second, source.second)});
}

ZORVEX_WIDE_INLINE bool areOpaque(__m256i pixels)
{
    const __m256i full = _mm256_cmpeq_epi32(_mm256_srli_epi32(pixels, 24), _mm256_set1_epi32(255));
    return _mm256_movemask_epi8(full) == -1;
}

ZORVEX_WIDE_INLINE std::uint64_t eightCoverages(const std::uint8_t* coverage)
{
    std::uint64_t eight;
    std::memcpy(&eight, coverage, sizeof eight);
    return eight;
}

} // namespace flash::render::wide8

#else

namespace flash::render::wide8
{
inline bool hasWide() { return false; }
} // namespace flash::render::wide8

#endif
