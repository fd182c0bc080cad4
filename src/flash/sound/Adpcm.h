#pragma once

#include "base/ByteReader.h"

#include <array>
#include <cstdint>
#include <vector>

namespace flash::sound
{

/// Reads the format's own ADPCM: codes of 2 to 5 bits, most significant bit first, in packets of 4096 samples
/// that begin with a sample and a step index for each channel.
/// @source SWF file format reference, chapter on sounds.
class AdpcmDecoder
{
public:
    /// @param data one sound or one block of a stream, its code size included; kept alive by the caller
    AdpcmDecoder(base::Bytes data, int channels);

    /// Appends up to `count` moments (a sample for each channel, interleaved) to `out`.
    /// @returns how many; fewer than asked for only where the data end.
    std::size_t decode(std::size_t count, std::vector<std::int16_t>& out);

    /// Moments at the end that may be what fills up the last byte, after all has been decoded. Only who knows
    /// how many there should be can tell.
    [[nodiscard]] std::size_t paddingMoments() const
    {
        constexpr std::size_t kLongestPadding = 7; // bits
        const std::size_t left = m_bytes.size() * 8 - m_bit;
        return left > kLongestPadding
                   ? 0
                   : (kLongestPadding - left) / static_cast<std::size_t>(m_codeBits * m_channelCount);
    }

private:
    struct Channel {
        int sample = 0, stepIndex = 0;
    };
    [[nodiscard]] bool hasBits(std::size_t count) const { return m_bytes.size() * 8 - m_bit >= count; }
    std::uint32_t bits(int count);
    bool startPacket();
    void step(Channel& channel);

    base::Bytes m_bytes;
    std::size_t m_bit = 0;
    int m_channelCount;
    int m_codeBits = 2;
    int m_leftInPacket = 0; // moments, the first one (given in full) included
    bool m_atPacketStart = false;
    std::array<Channel, 2> m_channels;
};

} // namespace flash::sound
