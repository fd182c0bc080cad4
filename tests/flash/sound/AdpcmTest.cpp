#include "flash/sound/Adpcm.h"

#include "AdpcmEncoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace flash::sound
{

namespace
{

// A tone that swells from nothing, so that steps of every size occur.
std::vector<std::int16_t> swellingTone(std::size_t moments, int channels)
{
    std::vector<std::int16_t> samples;
    for (std::size_t i = 0; i < moments; ++i) {
        const double level = 20000.0 * static_cast<double>(i) / static_cast<double>(moments);
        for (int channel = 0; channel < channels; ++channel) {
            samples.push_back(static_cast<std::int16_t>(
                level * std::sin(static_cast<double>(i) * (0.05 + 0.02 * channel))));
        }
    }
    return samples;
}

} // namespace

TEST(Adpcm, DecodesWhatATestEncoderWroteBitForBit)
{
    struct Case {
        const char* name;
        int codeBits, channels;
        double averageError; // what the width of the code allows
    };
    constexpr Case kCases[] = {
        {"two bits, mono", 2, 1, 1200},
        {"three bits, stereo", 3, 2, 400},
        {"four bits, mono", 4, 1, 150},
        {"five bits, stereo", 5, 2, 80},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const auto samples = swellingTone(9000, c.channels); // more than two packets
        const auto encoded = test::encodeAdpcm(samples, c.channels, c.codeBits);
        AdpcmDecoder decoder(encoded.bytes, c.channels);
        std::vector<std::int16_t> decoded;
        EXPECT_EQ(decoder.decode(5000, decoded), 5000U);
        EXPECT_EQ(decoder.decode(4000, decoded), 4000U);
        EXPECT_EQ(decoded, encoded.expected);
        double error = 0;
        for (std::size_t i = 0; i < samples.size(); ++i) error += std::abs(decoded[i] - samples[i]);
        EXPECT_LT(error / static_cast<double>(samples.size()), c.averageError);
    }
}

TEST(Adpcm, EndsWhereTheBytesEnd)
{
    const auto encoded = test::encodeAdpcm(swellingTone(40, 2), 2, 3);
    for (std::size_t length = 0; length < encoded.bytes.size(); ++length) {
        SCOPED_TRACE(length);
        // An exact copy, so that a read past the end is seen by the sanitizer.
        const std::vector<std::uint8_t> cut(encoded.bytes.begin(),
                                            encoded.bytes.begin() + static_cast<std::ptrdiff_t>(length));
        AdpcmDecoder decoder(cut, 2);
        std::vector<std::int16_t> decoded;
        const std::size_t moments = decoder.decode(100, decoded);
        EXPECT_LT(moments, 40U);
        EXPECT_EQ(decoded.size(), moments * 2);
    }
}

TEST(Adpcm, SaturatesInsteadOfWrapping)
{
    // Three bits to a code, the highest sample, step index 63, then codes of the highest magnitude upwards.
    std::vector<std::uint8_t> bytes = {0x5F, 0xFF, 0xFF};
    for (int i = 0; i < 10; ++i) bytes.insert(bytes.end(), {0x6D, 0xB6, 0xDB});
    AdpcmDecoder decoder(bytes, 1);
    std::vector<std::int16_t> decoded;
    EXPECT_EQ(decoder.decode(1000, decoded), 81U);
    EXPECT_EQ(decoded, std::vector<std::int16_t>(81, 32767));
}

} // namespace flash::sound
