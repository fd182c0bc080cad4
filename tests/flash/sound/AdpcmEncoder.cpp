#include "AdpcmEncoder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

namespace flash::sound::test
{

namespace
{

constexpr int kPacketSamples = 4096;

// clang-format off
constexpr std::array<int, 89> kSteps = {
    7, 8, 9, 10, 11, 12, 13, 14, 16, 17, 19, 21, 23, 25, 28, 31, 34, 37, 41, 45, 50, 55, 60, 66, 73, 80, 88, 97,
    107, 118, 130, 143, 157, 173, 190, 209, 230, 253, 279, 307, 337, 371, 408, 449, 494, 544, 598, 658, 724, 796,
    876, 963, 1060, 1166, 1282, 1411, 1552, 1707, 1878, 2066, 2272, 2499, 2749, 3024, 3327, 3660, 4026, 4428,
    4871, 5358, 5894, 6484, 7132, 7845, 8630, 9493, 10442, 11487, 12635, 13899, 15289, 16818, 18500, 20350,
    22385, 24623, 27086, 29794, 32767,
};
// clang-format on

// The published rule: codes of the lower half lessen the step by one place, those of the upper half enlarge
// it.
int indexChange(int magnitude, int codeBits)
{
    const int half = 1 << (codeBits - 2);
    if (magnitude < half) return -1;
    constexpr std::array<int, 8> kWidest = {1, 2, 4, 6, 8, 10, 13, 16};
    return codeBits == 5 ? kWidest[static_cast<std::size_t>(magnitude - half)] : 2 * (magnitude - half + 1);
}

class BitWriter
{
public:
    void put(unsigned value, int count)
    {
        for (int i = count - 1; i >= 0; --i, ++m_bit) {
            if (m_bit % 8 == 0) bytes.push_back(0);
            bytes.back() = static_cast<std::uint8_t>(bytes.back() | (value >> i & 1U) << (7 - m_bit % 8));
        }
    }
    std::vector<std::uint8_t> bytes;

private:
    std::size_t m_bit = 0;
};

struct Channel {
    int sample = 0, index = 0;

    unsigned encode(int wanted, int codeBits)
    {
        const int magnitudes = 1 << (codeBits - 1);
        int best = 0, bestError = 1 << 30, bestSample = 0;
        for (int code = 0; code < 2 * magnitudes; ++code) {
            // A magnitude stands for itself and a half, times the step; halves of the step fall away one by
            // one.
            int step = kSteps[static_cast<std::size_t>(index)], difference = 0;
            for (int bit = magnitudes / 2; bit > 0; bit /= 2, step /= 2) {
                if ((code & bit) != 0) difference += step;
            }
            difference += step;
            const int made =
                std::clamp(code < magnitudes ? sample + difference : sample - difference, -32768, 32767);
            if (std::abs(made - wanted) >= bestError) continue;
            best = code;
            bestError = std::abs(made - wanted);
            bestSample = made;
        }
        sample = bestSample;
        index = std::clamp(index + indexChange(best % magnitudes, codeBits), 0, 88);
        return static_cast<unsigned>(best);
    }
};

} // namespace

EncodedAdpcm encodeAdpcm(const std::vector<std::int16_t>& samples, int channels, int codeBits)
{
    EncodedAdpcm encoded;
    BitWriter writer;
    writer.put(static_cast<unsigned>(codeBits - 2), 2);
    std::array<Channel, 2> state;
    const auto count = static_cast<std::size_t>(channels);
    for (std::size_t moment = 0; moment < samples.size() / count; ++moment) {
        for (std::size_t i = 0; i < count; ++i) {
            const int wanted = samples[moment * count + i];
            if (moment % kPacketSamples == 0) {
                state[i].sample = wanted;
                writer.put(static_cast<std::uint16_t>(wanted), 16);
                writer.put(static_cast<unsigned>(state[i].index), 6);
            } else {
                writer.put(state[i].encode(wanted, codeBits), codeBits);
            }
            encoded.expected.push_back(static_cast<std::int16_t>(state[i].sample));
        }
    }
    encoded.bytes = std::move(writer.bytes);
    return encoded;
}

} // namespace flash::sound::test
