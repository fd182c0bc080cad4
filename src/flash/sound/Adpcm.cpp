#include "flash/sound/Adpcm.h"

#include <algorithm>

namespace flash::sound
{

namespace
{

constexpr int kPacketSamples = 4096;

// clang-format off
constexpr std::array<std::int16_t, 89> kSteps = {
    7, 8, 9, 10, 11, 12, 13, 14, 16, 17, 19, 21, 23, 25, 28, 31, 34, 37, 41, 45, 50, 55, 60, 66, 73, 80, 88, 97,
    107, 118, 130, 143, 157, 173, 190, 209, 230, 253, 279, 307, 337, 371, 408, 449, 494, 544, 598, 658, 724, 796,
    876, 963, 1060, 1166, 1282, 1411, 1552, 1707, 1878, 2066, 2272, 2499, 2749, 3024, 3327, 3660, 4026, 4428,
    4871, 5358, 5894, 6484, 7132, 7845, 8630, 9493, 10442, 11487, 12635, 13899, 15289, 16818, 18500, 20350,
    22385, 24623, 27086, 29794, 32767,
};
// By bits to a code (from 2) and magnitude of the code.
constexpr std::array<std::array<std::int8_t, 16>, 4> kIndexChange = {{
    {-1, 2},
    {-1, -1, 2, 4},
    {-1, -1, -1, -1, 2, 4, 6, 8},
    {-1, -1, -1, -1, -1, -1, -1, -1, 1, 2, 4, 6, 8, 10, 13, 16},
}};
// clang-format on

} // namespace

AdpcmDecoder::AdpcmDecoder(base::Bytes data, int channels) : m_bytes(data), m_channelCount(channels)
{
    if (hasBits(2)) m_codeBits = static_cast<int>(bits(2)) + 2;
}

std::uint32_t AdpcmDecoder::bits(int count)
{
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i, ++m_bit) {
        value = value << 1U | (m_bytes[m_bit / 8] >> (7 - m_bit % 8) & 1U);
    }
    return value;
}

bool AdpcmDecoder::startPacket()
{
    if (!hasBits(static_cast<std::size_t>(m_channelCount) * 22)) return false;
    for (int i = 0; i < m_channelCount; ++i) {
        m_channels[i].sample = static_cast<std::int16_t>(bits(16));
        m_channels[i].stepIndex = std::min<int>(static_cast<int>(bits(6)), kSteps.size() - 1);
    }
    m_leftInPacket = kPacketSamples;
    m_atPacketStart = true;
    return true;
}

void AdpcmDecoder::step(Channel& channel)
{
    const std::uint32_t code = bits(m_codeBits);
    const std::uint32_t signBit = 1U << (m_codeBits - 1);
    const std::uint32_t magnitude = code & (signBit - 1);
    int step = kSteps[channel.stepIndex];
    int difference = 0;
    for (std::uint32_t bit = signBit >> 1U; bit != 0; bit >>= 1U, step >>= 1) {
        if ((magnitude & bit) != 0) difference += step;
    }
    difference += step;
    if ((code & signBit) != 0) difference = -difference;
    channel.sample = std::clamp(channel.sample + difference, -32768, 32767);
    channel.stepIndex = std::clamp(channel.stepIndex + kIndexChange[m_codeBits - 2][magnitude], 0,
                                   static_cast<int>(kSteps.size()) - 1);
}

std::size_t AdpcmDecoder::decode(std::size_t count, std::vector<std::int16_t>& out)
{
    std::size_t done = 0;
    for (; done < count; ++done) {
        if (m_leftInPacket == 0 && !startPacket()) break;
        if (!m_atPacketStart) {
            if (!hasBits(static_cast<std::size_t>(m_codeBits) * m_channelCount)) break;
            for (int i = 0; i < m_channelCount; ++i) step(m_channels[i]);
        }
        m_atPacketStart = false;
        --m_leftInPacket;
        for (int i = 0; i < m_channelCount; ++i) {
            out.push_back(static_cast<std::int16_t>(m_channels[i].sample));
        }
    }
    return done;
}

} // namespace flash::sound
