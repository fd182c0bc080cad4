#include "browser/Resample.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace browser
{
namespace
{

/// Where a target column or row lies in the source.
struct Position {
    std::size_t first, second; ///< of the two neighbours, counted in pixels or rows
    double fraction;
};

std::vector<Position> positions(int sourceCount, int targetCount)
{
    const double scale = static_cast<double>(sourceCount - 1) / targetCount;
    std::vector<Position> result(static_cast<std::size_t>(targetCount));
    for (int i = 0; i < targetCount; ++i) {
        const double at = i * scale;
        const auto whole = static_cast<std::size_t>(at);
        const auto last = static_cast<std::size_t>(sourceCount - 1);
        result[static_cast<std::size_t>(i)] = {whole, std::min(whole + 1, last),
                                               at - static_cast<double>(whole)};
    }
    return result;
}

std::uint8_t blend(double fraction, std::uint8_t near, std::uint8_t far)
{
    // Rounds halves to even: the mode that every thread starts in.
    return static_cast<std::uint8_t>(std::nearbyint((1 - fraction) * near + fraction * far));
}

void blendPixel(const std::uint8_t* upper, const std::uint8_t* lower, const Position& x, double fy,
                std::uint8_t* target)
{
    for (std::size_t channel = 0; channel < 3; ++channel) {
        const std::size_t left = 3 * x.first + channel, right = 3 * x.second + channel;
        target[channel] =
            blend(x.fraction, blend(fy, upper[left], lower[left]), blend(fy, upper[right], lower[right]));
    }
}

#if defined(__SSE2__)

/// Two doubles at a time, with the very operations of blend(): multiply, multiply, add, round to nearest
/// even. (Fixed-point arithmetic would be quicker and wrong in the last bit.)
struct Blender {
    explicit Blender(double fraction) : near(_mm_set1_pd(1 - fraction)), far(_mm_set1_pd(fraction)) {}
    /// @returns two whole numbers in the lower half
    [[nodiscard]] __m128i operator()(__m128d a, __m128d b) const
    {
        return _mm_cvtpd_epi32(_mm_add_pd(_mm_mul_pd(near, a), _mm_mul_pd(far, b)));
    }
    __m128d near, far;
};

/// Four bytes as four whole numbers of 32 bits.
__m128i widen(const std::uint8_t* bytes)
{
    std::int32_t four;
    std::memcpy(&four, bytes, sizeof four);
    const __m128i zero = _mm_setzero_si128();
    return _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(four), zero), zero);
}

__m128d lowPair(__m128i numbers) { return _mm_cvtepi32_pd(numbers); }
__m128d highPair(__m128i numbers) { return _mm_cvtepi32_pd(_mm_unpackhi_epi64(numbers, numbers)); }

/// Four numbers at `offset` of both rows, blended.
__m128i blendRows(const std::uint8_t* upper, const std::uint8_t* lower, std::size_t offset,
                  const Blender& blender)
{
    const __m128i a = widen(upper + offset), b = widen(lower + offset);
    return _mm_unpacklo_epi64(blender(lowPair(a), lowPair(b)), blender(highPair(a), highPair(b)));
}

/// Needs two source pixels side by side. Reads their six bytes and no others: bytes 0 to 3 hold the left
/// pixel and bytes 2 to 5 the right one.
void blendPixelSse2(const std::uint8_t* upper, const std::uint8_t* lower, const Position& x,
                    const Blender& vertical, std::uint8_t* target)
{
    const Blender horizontal(x.fraction);
    const std::size_t at = 3 * x.first;
    const __m128i left = blendRows(upper, lower, at, vertical);                         // B G R b
    const __m128i right = _mm_srli_si128(blendRows(upper, lower, at + 2, vertical), 4); // b g r 0
    const __m128i blueGreen = horizontal(lowPair(left), lowPair(right));
    const __m128i red = horizontal(highPair(left), highPair(right));
    target[0] = static_cast<std::uint8_t>(_mm_cvtsi128_si32(blueGreen));
    target[1] = static_cast<std::uint8_t>(_mm_cvtsi128_si32(_mm_srli_si128(blueGreen, 4)));
    target[2] = static_cast<std::uint8_t>(_mm_cvtsi128_si32(red));
}

#endif

} // namespace

void resampleBilinearScalar(const PixelRows<const std::uint8_t>& source,
                            const PixelRows<std::uint8_t>& target)
{
    const auto columns = positions(source.width, target.width);
    const auto rows = positions(source.height, target.height);
    for (std::size_t y = 0; y < rows.size(); ++y) {
        const std::uint8_t* upper = source.bits + rows[y].first * source.lineBytes;
        const std::uint8_t* lower = source.bits + rows[y].second * source.lineBytes;
        std::uint8_t* out = target.bits + y * target.lineBytes;
        for (const Position& x : columns) {
            blendPixel(upper, lower, x, rows[y].fraction, out);
            out += 3;
        }
    }
}

void resampleBilinear(const PixelRows<const std::uint8_t>& source, const PixelRows<std::uint8_t>& target)
{
#if defined(__SSE2__)
    if (source.width >= 2) {
        const auto columns = positions(source.width, target.width);
        const auto rows = positions(source.height, target.height);
        for (std::size_t y = 0; y < rows.size(); ++y) {
            const std::uint8_t* upper = source.bits + rows[y].first * source.lineBytes;
            const std::uint8_t* lower = source.bits + rows[y].second * source.lineBytes;
            std::uint8_t* out = target.bits + y * target.lineBytes;
            const Blender vertical(rows[y].fraction);
            for (const Position& x : columns) {
                blendPixelSse2(upper, lower, x, vertical, out);
                out += 3;
            }
        }
        return;
    }
#endif
    resampleBilinearScalar(source, target);
}

} // namespace browser
