#include "flash/render/GradientRows.h"
#include "flash/render/WidePixels.h"

#include <algorithm>

// The same as GradientRows.cpp does, eight pixels in a register from place to colour. What is added and
// multiplied there is here too, in the same order, so that no pixel depends on the processor.
namespace flash::render
{

#ifdef ZORVEX_HAS_WIDE

namespace
{

using wide8::kGroup;
using Spread = swf::Gradient::Spread;
using Floats = float __attribute__((vector_size(32)));

ZORVEX_WIDE_INLINE Floats rootOf(Floats v) { return _mm256_sqrt_ps(v); }
// Of numbers that are none, the bound.
ZORVEX_WIDE_INLINE Floats atMost(Floats v, float bound) { return _mm256_min_ps(v, _mm256_set1_ps(bound)); }
ZORVEX_WIDE_INLINE Floats atLeast(Floats v, float bound) { return _mm256_max_ps(v, _mm256_set1_ps(bound)); }

// A GradientRow in registers.
struct Places {
    ZORVEX_WIDE_INLINE explicit Places(const GradientRow& row)
        : startX(Floats{} + row.startX), startY(Floats{} + row.startY), stepX(Floats{} + row.stepX),
          stepY(Floats{} + row.stepY), focal(Floats{} + row.focal), inverse(1 / (1 - focal * focal))
    {
    }
    Floats startX, startY, stepX, stepY, focal, inverse;
};

template <GradientForm kForm>
ZORVEX_WIDE_INLINE Floats positionsAt(const Places& row, Floats index)
{
    const Floats x = row.startX + row.stepX * index;
    if constexpr (kForm == GradientForm::Linear) {
        return atMost(atLeast(x, -kMaxDistance), kMaxDistance);
    } else {
        const Floats y = row.startY + row.stepY * index;
        if constexpr (kForm == GradientForm::Radial)
            return atMost(rootOf(x * x + y * y) * kRadialSize, kMaxDistance);
        const Floats focal = row.focal, dx = x - focal;
        const Floats root = rootOf(atLeast(dx * dx + y * y - focal * focal * y * y, 0));
        return atMost(atLeast((focal * dx + root) * row.inverse * kRampSize, 0), kMaxDistance);
    }
}

template <GradientForm kForm, Spread kSpread>
ZORVEX_WIDE_INLINE __m256i entriesAt(const Places& row, Floats index)
{
    const __m256i last = _mm256_set1_epi32(kRampSize - 1), twice = _mm256_set1_epi32(2 * kRampSize - 1);
    Floats positions = positionsAt<kForm>(row, index);
    if constexpr (kForm == GradientForm::Linear && kSpread != Spread::Pad)
        positions = _mm256_floor_ps(positions);
    __m256i at = _mm256_cvttps_epi32(positions);
    if constexpr (kSpread == Spread::Pad) {
        // Distances are never below nothing.
        if constexpr (kForm == GradientForm::Linear) at = _mm256_max_epi32(at, _mm256_setzero_si256());
        return _mm256_min_epi32(at, last);
    }
    if constexpr (kSpread == Spread::Repeat) return _mm256_and_si256(at, last);
    const __m256i within = _mm256_and_si256(at, twice);
    return _mm256_min_epi32(within, _mm256_sub_epi32(twice, within));
}

// One by one: the processor's own way to gather them is no quicker where it is at its best, and many times
// slower where it had to be mended.
ZORVEX_WIDE_INLINE __m256i colorsOf(const std::uint32_t* ramp, __m256i entries)
{
    alignas(32) std::uint32_t at[kGroup];
    _mm256_store_si256(reinterpret_cast<__m256i*>(at), entries);
    const auto two = [&](std::size_t i) {
        return _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(ramp[at[i]])),
                                  _mm_cvtsi32_si128(static_cast<int>(ramp[at[i + 1]])));
    };
    return _mm256_set_m128i(_mm_unpacklo_epi64(two(4), two(6)), _mm_unpacklo_epi64(two(0), two(2)));
}

ZORVEX_WIDE_INLINE Floats indexFrom(std::size_t first)
{
    return Floats{0, 1, 2, 3, 4, 5, 6, 7} + static_cast<float>(static_cast<int>(first));
}

template <GradientForm kForm, Spread kSpread>
ZORVEX_WIDE void fillGroups(const std::uint32_t* ramp, const GradientRow& row, std::size_t first,
                            std::size_t count, std::uint32_t* to)
{
    const Places places(row);
    Floats index = indexFrom(first);
    for (; count >= kGroup; count -= kGroup, to += kGroup, index += kGroup)
        wide8::store(to, colorsOf(ramp, entriesAt<kForm, kSpread>(places, index)));
    if (count > 0)
        wide8::store(to, wide8::firstOf(count), colorsOf(ramp, entriesAt<kForm, kSpread>(places, index)));
}

ZORVEX_WIDE_INLINE __m256i laid(std::uint64_t coverages, __m256i colors, __m256i below)
{
    return wide8::over(wide8::scaled(wide8::channelsOf(colors), wide8::spreadCoverage(coverages)), below);
}

// The same and composePixels() in one.
template <GradientForm kForm, Spread kSpread>
ZORVEX_WIDE void layGroups(const std::uint32_t* ramp, const GradientRow& row, std::size_t first,
                           const std::uint8_t* coverage, std::size_t count, std::uint32_t* to)
{
    const Places places(row);
    Floats index = indexFrom(first);
    for (; count >= kGroup; count -= kGroup, to += kGroup, coverage += kGroup, index += kGroup) {
        const std::uint64_t coverages = wide8::eightCoverages(coverage);
        if (coverages == 0) continue;
        const __m256i colors = colorsOf(ramp, entriesAt<kForm, kSpread>(places, index));
        if (coverages != ~std::uint64_t{0})
            wide8::store(to, laid(coverages, colors, wide8::load(to)));
        else if (wide8::areOpaque(colors))
            wide8::store(to, colors);
        else if (_mm256_testz_si256(colors, colors) == 0)
            wide8::store(to, wide8::over(wide8::channelsOf(colors), wide8::load(to)));
    }
    if (count == 0) return;
    const __m256i wanted = wide8::firstOf(count);
    wide8::store(to, wanted,
                 laid(wide8::eightCoverages(coverage),
                      colorsOf(ramp, entriesAt<kForm, kSpread>(places, index)), wide8::load(to, wanted)));
}

// Along a line positions only grow, or only fall: where both ends of a piece have the same entry, beyond the
// ends of the ramp above all, so has what lies between.
ZORVEX_WIDE void fillLinearPad(const std::uint32_t* ramp, const GradientRow& row, std::size_t first,
                               std::size_t count, std::uint32_t* to)
{
    constexpr std::size_t kPiece = 64, kShort = 32;
    if (count < kShort) return fillGroups<GradientForm::Linear, Spread::Pad>(ramp, row, first, count, to);
    while (count > 0) {
        const std::size_t piece = std::min(count, kPiece);
        const auto from = static_cast<float>(static_cast<int>(first)),
                   last = static_cast<float>(static_cast<int>(first + piece - 1));
        const __m256i ends = entriesAt<GradientForm::Linear, Spread::Pad>(
            Places(row), Floats{from, last, from, from, from, from});
        const int entry = _mm256_extract_epi32(ends, 0);
        if (entry == _mm256_extract_epi32(ends, 1))
            std::fill_n(to, piece, ramp[entry]);
        else
            fillGroups<GradientForm::Linear, Spread::Pad>(ramp, row, first, piece, to);
        first += piece;
        to += piece;
        count -= piece;
    }
}

template <GradientForm kForm>
GradientLoops wideOf(Spread spread)
{
    switch (spread) {
    case Spread::Pad: break;
    case Spread::Reflect: return {fillGroups<kForm, Spread::Reflect>, layGroups<kForm, Spread::Reflect>};
    case Spread::Repeat: return {fillGroups<kForm, Spread::Repeat>, layGroups<kForm, Spread::Repeat>};
    }
    if constexpr (kForm == GradientForm::Linear)
        return {fillLinearPad, layGroups<kForm, Spread::Pad>};
    else
        return {fillGroups<kForm, Spread::Pad>, layGroups<kForm, Spread::Pad>};
}

} // namespace

GradientLoops wideGradientLoops(GradientForm form, Spread spread)
{
    if (!wide8::hasWide()) return {};
    switch (form) {
    case GradientForm::Linear: return wideOf<GradientForm::Linear>(spread);
    case GradientForm::Radial: return wideOf<GradientForm::Radial>(spread);
    case GradientForm::Focal: break;
    }
    return wideOf<GradientForm::Focal>(spread);
}

#else

GradientLoops wideGradientLoops(GradientForm /*form*/, swf::Gradient::Spread /*spread*/) { return {}; }

#endif

} // namespace flash::render
