#pragma once

#include <cstdint>
#include <vector>

namespace flash::sound::test
{

struct EncodedAdpcm {
    std::vector<std::uint8_t> bytes;
    std::vector<std::int16_t> expected; ///< what a decoder must make of them
};

/// @param samples interleaved @param codeBits 2 to 5
EncodedAdpcm encodeAdpcm(const std::vector<std::int16_t>& samples, int channels, int codeBits);

} // namespace flash::sound::test
