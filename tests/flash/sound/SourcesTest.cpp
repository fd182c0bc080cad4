#include "flash/sound/Sources.h"

#include "AdpcmEncoder.h"
#include "flash/sound/EventSource.h"
#include "flash/sound/Mp3Header.h"
#include "flash/sound/SoundCache.h"

#include <gtest/gtest.h>

#include <cstring>
#include <utility>

namespace flash::sound
{

namespace
{

std::vector<StereoFrame> readAll(SampleSource& source, std::size_t limit = 1 << 20)
{
    std::vector<StereoFrame> frames(limit);
    frames.resize(source.read(frames));
    return frames;
}

// One frame of MPEG-1 layer III, 128 kbit/s, 44.1 kHz, stereo, whose side information says: silence.
std::vector<std::uint8_t> silentMp3Frame()
{
    std::vector<std::uint8_t> frame(417);
    frame[0] = 0xFF;
    frame[1] = 0xFB;
    frame[2] = 0x90;
    return frame;
}

std::vector<std::uint8_t> silentMp3(int frames)
{
    std::vector<std::uint8_t> bytes;
    const auto frame = silentMp3Frame();
    for (int i = 0; i < frames; ++i) bytes.insert(bytes.end(), frame.begin(), frame.end());
    return bytes;
}

std::vector<std::uint8_t> rampPcm(int frames)
{
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < frames; ++i) {
        const StereoFrame frame{static_cast<std::int16_t>(i), static_cast<std::int16_t>(-i)};
        const auto* raw = reinterpret_cast<const std::uint8_t*>(&frame);
        bytes.insert(bytes.end(), raw, raw + sizeof(frame));
    }
    return bytes;
}

// A movie with nothing but the bytes that sounds point into.
std::shared_ptr<swf::Movie> movieOf(std::vector<std::uint8_t> bytes)
{
    auto movie = std::make_shared<swf::Movie>();
    movie->bytes = std::move(bytes);
    return movie;
}

swf::Sound pcmSound(const swf::Movie& movie)
{
    swf::Sound sound;
    sound.rate = 44100;
    sound.stereo = true;
    sound.data = movie.bytes;
    sound.sampleCount = static_cast<std::uint32_t>(movie.bytes.size() / 4);
    return sound;
}

} // namespace

TEST(SoundSource, PassesSamplesOfTheMixersOwnLayoutThrough)
{
    const auto movie = movieOf(rampPcm(5000));
    const swf::Sound sound = pcmSound(*movie);
    const auto source = openSound(movie, sound);
    ASSERT_TRUE(source);
    source->seek(4990);
    const auto frames = readAll(*source);
    ASSERT_EQ(frames.size(), 10U);
    EXPECT_EQ(frames[0], (StereoFrame{4990, -4990}));
    EXPECT_EQ(frames[9], (StereoFrame{4999, -4999}));
}

TEST(SoundSource, LastsAsLongAsTheRateAndTheCountSay)
{
    struct Case {
        const char* name;
        swf::SoundFormat format;
        int rate;
        bool sixteenBit, stereo;
        std::uint32_t samples;
        std::size_t expected;
    };
    constexpr Case kCases[] = {
        {"8 bits, mono, an eighth of the rate", swf::SoundFormat::PcmNative, 5512, false, false, 1000, 8000},
        {"16 bits, mono, a quarter", swf::SoundFormat::PcmLittleEndian, 11025, true, false, 1000, 4000},
        {"8 bits, stereo, half", swf::SoundFormat::PcmLittleEndian, 22050, false, true, 1000, 2000},
        {"ADPCM, mono, a quarter", swf::SoundFormat::Adpcm, 11025, true, false, 1000, 4000},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        const std::vector<std::int16_t> samples(1000, 12000);
        const auto movie =
            movieOf(c.format == swf::SoundFormat::Adpcm ? test::encodeAdpcm(samples, 1, 4).bytes
                                                        : std::vector<std::uint8_t>(4000, 192));
        swf::Sound sound = pcmSound(*movie);
        sound.format = c.format;
        sound.rate = c.rate;
        sound.sixteenBit = c.sixteenBit;
        sound.stereo = c.stereo;
        sound.sampleCount = c.samples;
        const auto source = openSound(movie, sound);
        ASSERT_TRUE(source);
        const auto frames = readAll(*source);
        EXPECT_NEAR(static_cast<double>(frames.size()), static_cast<double>(c.expected), 16);
        source->rewind();
        EXPECT_EQ(readAll(*source), frames) << "a second run must sound the same";
        if (c.format == swf::SoundFormat::Adpcm) {
            EXPECT_NEAR(frames[frames.size() / 2].left, 12000, 300);
            EXPECT_EQ(frames[frames.size() / 2].left, frames[frames.size() / 2].right) << "mono goes to both";
        } else if (!c.sixteenBit) {
            EXPECT_NEAR(frames[frames.size() / 2].left, 64 * 256, 300);
        }
    }
}

TEST(SoundSource, SkipsTheLatencyOfMp3AndStopsAtTheStatedEnd)
{
    const auto movie = movieOf(silentMp3(20));
    swf::Sound sound = pcmSound(*movie);
    sound.format = swf::SoundFormat::Mp3;
    sound.sampleCount = 0; // as some tools leave it: everything there is
    auto source = openSound(movie, sound);
    ASSERT_TRUE(source);
    const std::size_t whole = readAll(*source).size();
    EXPECT_GE(whole, 19U * 1152);
    EXPECT_LE(whole, 21U * 1152);

    sound.latencySamples = 1000;
    EXPECT_EQ(readAll(*openSound(movie, sound)).size(), whole - 1000);
    sound.sampleCount = 5000;
    EXPECT_EQ(readAll(*openSound(movie, sound)).size(), 5000U);
}

TEST(SoundSource, SurvivesCutAndHostileData)
{
    std::vector<std::uint8_t> noise(600);
    std::uint32_t seed = 1;
    for (auto& byte : noise) byte = static_cast<std::uint8_t>((seed = seed * 1664525 + 1013904223) >> 24U);
    using F = swf::SoundFormat;
    for (const F format : {F::PcmNative, F::Adpcm, F::Mp3, F::PcmLittleEndian, F::Nellymoser16k,
                           F::Nellymoser8k, F::Nellymoser, F::Speex}) {
        for (const std::size_t length : {0, 1, 2, 3, 5, 63, 64, 65, 127, 600}) {
            SCOPED_TRACE(static_cast<int>(format));
            SCOPED_TRACE(length);
            const auto movie = movieOf({noise.begin(), noise.begin() + static_cast<std::ptrdiff_t>(length)});
            swf::Sound sound = pcmSound(*movie);
            sound.format = format;
            sound.sampleCount = 0xFFFFFFFF;
            const auto source = openSound(movie, sound);
            ASSERT_TRUE(source) << "libavcodec lacks a decoder";
            EXPECT_LT(readAll(*source).size(), 1U << 18U);
        }
    }
}

TEST(Mp3File, IsMeasuredWithoutItsTags)
{
    std::vector<std::uint8_t> file = {'I', 'D', '3', 3, 0, 0, 0, 0, 1, 2}; // 130 bytes follow
    file.resize(file.size() + 130, 0xFF);
    const auto music = silentMp3(10);
    file.insert(file.end(), music.begin(), music.end());
    file.insert(file.end(), {'T', 'A', 'G'});
    file.resize(file.size() + 125);
    EXPECT_EQ(mp3Music(file).size(), music.size());
    EXPECT_NEAR(mp3DurationMs(file), 10 * 1152 * 1000.0 / 44100, 0.01);
    for (std::size_t length = 0; length < 200; ++length) {
        EXPECT_GE(mp3DurationMs(base::Bytes(file).first(length)), 0);
    }
    const auto source = openSoundFile(std::make_shared<const std::vector<std::uint8_t>>(file));
    ASSERT_TRUE(source);
    EXPECT_NEAR(static_cast<double>(readAll(*source).size()), 10 * 1152, 1152);
}

TEST(EventSource, PlaysBetweenItsPointsAsOftenAsToldUnderItsEnvelope)
{
    const auto movie = movieOf(rampPcm(2000));
    const swf::Sound sound = pcmSound(*movie);
    swf::SoundInfo info;
    info.inPoint = 1000;
    info.outPoint = 1004;
    info.loops = 3;
    EventSource looped(openSound(movie, sound), info);
    std::vector<int> lefts;
    for (const StereoFrame& frame : readAll(looped)) lefts.push_back(frame.left);
    EXPECT_EQ(lefts,
              (std::vector<int>{1000, 1001, 1002, 1003, 1000, 1001, 1002, 1003, 1000, 1001, 1002, 1003}));

    // The left channel fades in over the first repetition and stays; the right one fades out.
    info.envelope = {{0, 0, 32768}, {4, 32768, 0}};
    info.loops = 2;
    EventSource faded(openSound(movie, sound), info);
    const auto frames = readAll(faded);
    ASSERT_EQ(frames.size(), 8U);
    EXPECT_EQ(frames[0], (StereoFrame{0, -1000}));
    EXPECT_EQ(frames[2], (StereoFrame{501, -501}));
    EXPECT_EQ(frames[6], (StereoFrame{1002, 0}));
}

TEST(EventSource, EndsWhenThereIsNothingToRepeat)
{
    const auto movie = movieOf({});
    const swf::Sound sound = pcmSound(*movie);
    swf::SoundInfo info;
    info.loops = 65535;
    EXPECT_TRUE(readAll(*std::make_unique<EventSource>(openSound(movie, sound), info)).empty());
    info.inPoint = 0xFFFFFFF0; // far behind the end
    EXPECT_TRUE(readAll(*std::make_unique<EventSource>(openSound(movie, sound), info)).empty());
}

TEST(SoundCache, HandsOutTheSameSamplesToEveryReader)
{
    const auto movie = movieOf(rampPcm(20000));
    const swf::Sound sound = pcmSound(*movie);
    SoundCache cache(1000); // room for nothing: what plays must stay alive all the same
    const auto first = cache.open(movie, sound);
    first->seek(15000);
    const auto second = cache.open(movie, sound);
    EXPECT_EQ(readAll(*second).size(), 20000U);
    const auto rest = readAll(*first);
    ASSERT_EQ(rest.size(), 5000U);
    EXPECT_EQ(rest[0].left, 15000);
}

namespace
{

/// A stream of a block to a frame, 16 bits of one channel. @param samplesOf gives those of a block
struct AdpcmStream {
    std::shared_ptr<swf::Movie> movie = std::make_shared<swf::Movie>();
    swf::Timeline timeline;
    template <class SamplesOf>
    AdpcmStream(std::size_t frames, int rate, std::uint16_t perBlock, SamplesOf&& samplesOf)
    {
        std::vector<std::size_t> begins;
        for (std::size_t i = 0; i < frames; ++i) {
            const auto encoded = test::encodeAdpcm(samplesOf(i), 1, 4);
            begins.push_back(movie->bytes.size());
            movie->bytes.insert(movie->bytes.end(), encoded.bytes.begin(), encoded.bytes.end());
        }
        begins.push_back(movie->bytes.size());
        timeline.streamHead = swf::SoundStreamHead{swf::SoundFormat::Adpcm, rate, true, false, perBlock, 0};
        timeline.frames.resize(frames);
        for (std::size_t i = 0; i < frames; ++i)
            timeline.frames[i].tags.emplace_back(swf::SoundStreamBlock{
                base::Bytes(movie->bytes).subspan(begins[i], begins[i + 1] - begins[i])});
    }
};

} // namespace

TEST(Streams, OfAdpcmDoNotDriftByWhatFillsUpTheirBytes)
{
    // 918.75 samples of four bits to a frame; blocks of 918 end in half a byte, which is not a sample.
    constexpr int kFrames = 1200, kRate = 11025, kFramesPerSecond = 12;
    long done = 0;
    const AdpcmStream stream(kFrames, kRate, 919, [&](std::size_t i) {
        const long end = std::lround((static_cast<double>(i) + 1) * kRate / kFramesPerSecond);
        return std::vector<std::int16_t>(static_cast<std::size_t>(end - std::exchange(done, end)), 1000);
    });
    const auto source = openStream(stream.movie, stream.timeline, 0, kFramesPerSecond);
    ASSERT_NE(source, nullptr);
    std::vector<StereoFrame> out(4096);
    long heard = 0;
    while (const std::size_t count = source->read(out)) heard += static_cast<long>(count);
    EXPECT_NEAR(static_cast<double>(heard) / kMixRate, kFrames / static_cast<double>(kFramesPerSecond),
                0.002);
}

TEST(Streams, OfAdpcmKeepTheirPlaceFromTheFirstBlockOn)
{
    // 882 samples of four bits, each block on the other side of silence: it changes there, and nowhere later.
    constexpr std::size_t kFrames = 40, kSamples = 882, kInMix = 2 * kSamples, kNear = 4;
    const AdpcmStream stream(kFrames, 22050, kSamples, [](std::size_t i) {
        return std::vector<std::int16_t>(kSamples, i % 2 == 0 ? 4000 : -4000);
    });
    const auto source = openStream(stream.movie, stream.timeline, 0, 25);
    ASSERT_NE(source, nullptr);
    const auto heard = readAll(*source);
    ASSERT_EQ(heard.size(), kFrames * kInMix);
    for (std::size_t i = 1; i < kFrames; ++i) {
        EXPECT_EQ(heard[i * kInMix - kNear].left > 0, i % 2 != 0) << "before block " << i;
        EXPECT_EQ(heard[i * kInMix + kNear].left > 0, i % 2 == 0) << "in block " << i;
    }
}

} // namespace flash::sound
