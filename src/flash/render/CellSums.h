#pragma once

#include "flash/render/Spans.h"

#include <cstddef>
#include <cstdint>

// What DenseCells has of a row, a number to the pixel of which the running sum is the area of what is on the
// left of lines, turned into coverage. `sums` and `count` are those of whole groups of 8 pixels; the numbers
// taken are 0 afterwards. `carry` is the running sum before, and then after.
namespace flash::render
{

/// Numbers of 32 bits count areas as they are, see kFullArea. Where points lie on quarters of pixels, areas
/// are multiples of 2^13, and numbers of 16 bits count those: half the memory, and twice as many side by
/// side. More than two thousand windings around a pixel overflow them, which shows as a wrong colour there.
template <class Sum>
constexpr int kUnitBits = sizeof(Sum) == sizeof(std::int16_t) ? 13 : 0;

/// Coverage 0..255 of each pixel.
void takeCoverage(std::int32_t* sums, std::size_t count, std::int32_t& carry, FillRule rule,
                  std::uint8_t* to);
void takeCoverage(std::int16_t* sums, std::size_t count, std::int32_t& carry, FillRule rule,
                  std::uint8_t* to);

/// The parts that are inside, 0..kFullArea.
/// @param present is told, group by group, whether there is anything
void takeAreas(std::int32_t* sums, std::size_t count, std::int32_t& carry, FillRule rule, std::int32_t* to,
               std::uint8_t* present);
void takeAreas(std::int16_t* sums, std::size_t count, std::int32_t& carry, FillRule rule, std::int32_t* to,
               std::uint8_t* present);
void areasToBytes(const std::int32_t* areas, std::size_t count, std::uint8_t* to);

/// Coverage that goes straight onto the pixels at `to`, in one colour.
/// @param room pixels from `to` on that may be written; the last group may reach beyond
void laySolid(std::int32_t* sums, int count, std::int32_t& carry, FillRule rule, std::uint32_t color,
              std::uint32_t* to, int room);
void laySolid(std::int16_t* sums, int count, std::int32_t& carry, FillRule rule, std::uint32_t color,
              std::uint32_t* to, int room);

/// What a group of pixels has left for styles below: areas so far, and how many of 255 parts they came to.
/// Rounding the running sum, not each part, keeps a full pixel at exactly 255.
struct Given {
    std::int32_t areas[8] = {};
    std::int32_t parts[8] = {};
};
void giveShares(Given& given, const std::int32_t* areas, std::uint8_t* shares);

} // namespace flash::render
