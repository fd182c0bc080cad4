#pragma once

#include <cstddef>
#include <cstdint>

// Rows of premultiplied pixels laid over rows of pixels. Coverage is 0..255. The inner loops of everything
// that is drawn: written with the compiler's vectors, in a version for AVX2 and one for any processor, of
// which the loader picks one.
namespace flash::render
{

/// For many: whole pieces of memory are written without reading them first.
void fillPixels(std::uint32_t* to, std::size_t count, std::uint32_t color);

void composeSolid(std::uint32_t* below, std::size_t count, std::uint32_t color);
void composeSolid(std::uint32_t* below, const std::uint8_t* coverage, std::size_t count, std::uint32_t color);
void composePixels(std::uint32_t* below, const std::uint32_t* source, std::size_t count);
void composePixels(std::uint32_t* below, const std::uint32_t* source, const std::uint8_t* coverage,
                   std::size_t count);

/// Adds pixels times coverage to sums of four channels to the pixel; the coverages that go into one pixel
/// come to 255 at most.
void addSolid(std::uint16_t* sums, const std::uint8_t* coverage, std::size_t count, std::uint32_t color);
void addPixels(std::uint16_t* sums, const std::uint8_t* coverage, std::size_t count,
               const std::uint32_t* source);
/// The pixels that such sums come to.
void takeSums(std::uint32_t* to, const std::uint16_t* sums, std::size_t count);

/// coverage[i] becomes coverage[i] * factors[i] / 255.
void scaleCoverage(std::uint8_t* coverage, const std::uint8_t* factors, std::size_t count);
/// The union of two coverages that know nothing of each other: a + b - a b / 255.
void uniteCoverage(std::uint8_t* coverage, const std::uint8_t* others, std::size_t count);

} // namespace flash::render
