#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// Arithmetic on several pixels at once, for the inner loops of functions marked ZORVEX_VECTORIZE: all of it
// is inlined there, and so compiled for what each of their versions may use.
namespace flash::render::wide
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

} // namespace flash::render::wide
