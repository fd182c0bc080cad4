#include "flash/sound/FlvSound.h"

#include "flash/sound/EventSource.h"
#include "flash/video/GrowingFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace flash::sound
{

namespace
{

using ByteList = std::vector<std::uint8_t>;

FileBytes shared(ByteList bytes) { return std::make_shared<const ByteList>(std::move(bytes)); }

// A second of 441 Hz, written by another program.
FileBytes tone(const std::string& codec)
{
    std::ifstream file(TEST_SOURCE_DIR "/tone-" + codec + ".flv", std::ios::binary);
    return shared(ByteList(std::istreambuf_iterator<char>(file), {}));
}

std::vector<StereoFrame> readAll(SampleSource& source)
{
    std::vector<StereoFrame> all, some(5000);
    while (all.size() < 100'000'000) {
        const std::size_t got = source.read(some);
        all.insert(all.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(got));
        if (got < some.size()) break;
    }
    return all;
}

int risesThroughZero(std::span<const StereoFrame> frames)
{
    int count = 0;
    for (std::size_t i = 1; i < frames.size(); ++i) count += frames[i - 1].left < 0 && frames[i].left >= 0;
    return count;
}

class FlvWriter
{
public:
    FlvWriter() : m_bytes{'F', 'L', 'V', 1, 4, 0, 0, 0, 9, 0, 0, 0, 0} {}
    void sound(std::uint32_t timeMs, std::uint8_t head, const ByteList& samples)
    {
        m_bytes.push_back(8);
        bigEndian(static_cast<std::uint32_t>(samples.size()) + 1, 3);
        bigEndian(timeMs & 0xFFFFFF, 3);
        bigEndian(timeMs >> 24, 1);
        bigEndian(0, 3);
        m_bytes.push_back(head);
        m_bytes.insert(m_bytes.end(), samples.begin(), samples.end());
        bigEndian(static_cast<std::uint32_t>(samples.size()) + 12, 4);
    }
    [[nodiscard]] const ByteList& bytes() const { return m_bytes; }

private:
    void bigEndian(std::uint32_t value, int count)
    {
        while (count-- > 0) m_bytes.push_back(static_cast<std::uint8_t>(value >> (8 * count)));
    }
    ByteList m_bytes;
};

// 44100 Hz, 8 bits, one channel: 128 is silence.
constexpr std::uint8_t kPlain = 0x0C;

} // namespace

TEST(FlvSound, PlaysEveryCodec)
{
    for (const char* codec : {"nellymoser", "aac", "speex", "mulaw"}) {
        SCOPED_TRACE(codec);
        const auto source = openSoundFile(tone(codec));
        ASSERT_TRUE(source);
        const auto frames = readAll(*source);
        EXPECT_NEAR(static_cast<double>(frames.size()), kMixRate, kMixRate * 0.08);
        ASSERT_GT(frames.size(), 30'000U);
        const auto middle = std::span(frames).subspan(10'000, 20'000);
        EXPECT_NEAR(risesThroughZero(middle), 200, 2);
        const auto peak = std::ranges::max(middle, {}, &StereoFrame::left).left;
        EXPECT_NEAR(peak, 4096, 500) << "an eighth of the full level";
        EXPECT_EQ(middle[77].left, middle[77].right) << "one channel is heard from both speakers";
        source->seek(kMixRate / 2);
        EXPECT_NEAR(static_cast<double>(readAll(*source).size()),
                    static_cast<double>(frames.size()) - kMixRate / 2.0, 2000);
    }
}

TEST(FlvSound, StandsWhereItsTimesSay)
{
    FlvWriter file;
    file.sound(500, kPlain, ByteList(4410, 192));
    file.sound(600, kPlain, ByteList(4410, 192));
    file.sound(2000, kPlain, ByteList(4410, 64));
    const auto source = openSoundFile(shared(file.bytes()));
    ASSERT_TRUE(source);
    const auto frames = readAll(*source);
    ASSERT_EQ(frames.size(), 21U * 4410);
    const auto at = [&](double ms) { return frames[static_cast<std::size_t>(ms * kMixRate / 1000)].left; };
    EXPECT_EQ(at(499.9), 0);
    EXPECT_EQ(at(500.1), 16384);
    EXPECT_EQ(at(699.9), 16384);
    EXPECT_EQ(at(700.1), 0);
    EXPECT_EQ(at(1999.9), 0);
    EXPECT_EQ(at(2000.1), -16384);
    for (const double ms : {0.0, 250.0, 550.0, 650.0, 1000.0, 2050.0}) {
        source->seek(static_cast<std::uint64_t>(ms * kMixRate / 1000));
        StereoFrame first;
        ASSERT_EQ(source->read({&first, 1}), 1U) << ms;
        EXPECT_EQ(first.left, at(ms)) << ms;
    }
    source->seek(frames.size());
    EXPECT_TRUE(readAll(*source).empty());
}

TEST(FlvSound, GoesOnWithoutASeamWhileTheFileGrows)
{
    for (const char* codec : {"nellymoser", "aac", "speex", "mulaw"}) {
        SCOPED_TRACE(codec);
        const FileBytes whole = tone(codec);
        const auto wanted = readAll(*openSoundFile(whole));
        const auto growth = std::make_shared<video::Growth>();
        const auto upTo = [&](std::size_t part) {
            const auto end = whole->begin() + static_cast<std::ptrdiff_t>(whole->size() * part / 10);
            return shared(ByteList(whole->begin(), end));
        };
        const auto source = openSoundFile(video::growing(upTo(4), growth));
        ASSERT_TRUE(source);
        std::vector<StereoFrame> heard, some(wanted.size() / 10);
        for (std::size_t part = 5; part <= 10; ++part) {
            EXPECT_TRUE(growth->offer(upTo(part)));
            const std::size_t got = source->read(some);
            heard.insert(heard.end(), some.begin(), some.begin() + static_cast<std::ptrdiff_t>(got));
        }
        const auto rest = readAll(*source);
        heard.insert(heard.end(), rest.begin(), rest.end());
        EXPECT_EQ(heard, wanted);
        EXPECT_FALSE(growth->offer(whole)) << "it has come to the end before";
    }
}

TEST(FlvSound, CostsNothingWhereAPacketLiesDaysAhead)
{
    FlvWriter file;
    file.sound(0, kPlain, ByteList(100, 192));
    file.sound(0xFFFFFFF0, kPlain, ByteList(100, 192));
    const auto source = openSoundFile(shared(file.bytes()));
    ASSERT_TRUE(source);
    StereoFrame frame;
    source->seek(std::uint64_t{0xFFFFFFF0} * 44100 / 1000 - 1000); // decoding the silence would take minutes
    EXPECT_EQ(source->read({&frame, 1}), 1U);
    EXPECT_EQ(frame, StereoFrame{});
}

TEST(FlvSound, SurvivesEveryTruncationAndFlippedBytes)
{
    for (const char* codec : {"nellymoser", "aac", "speex", "mulaw"}) {
        const ByteList whole = *tone(codec);
        for (std::size_t length = 0; length < whole.size(); length += 97) {
            const auto source =
                openSoundFile(shared({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}));
            if (!source) continue;
            EXPECT_LE(readAll(*source).size(), 60000U);
        }
        for (std::size_t at = 13; at < whole.size(); at += 61) {
            ByteList damaged = whole;
            damaged[at] ^= 0x55;
            const auto source = openSoundFile(shared(damaged));
            std::vector<StereoFrame> frames(60'000);
            if (source) (void)source->read(frames);
        }
    }
}

} // namespace flash::sound
