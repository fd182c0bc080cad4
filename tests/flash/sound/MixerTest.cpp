#include "flash/sound/Mixer.h"

#include "flash/sound/SoundPlayer.h"

#include <gtest/gtest.h>

namespace flash::sound
{

namespace
{

/// The same moment over and over.
class Steady final : public SampleSource
{
public:
    Steady(StereoFrame frame, std::size_t count) : m_frame(frame), m_count(count) {}
    std::size_t read(std::span<StereoFrame> out) override
    {
        const std::size_t got = std::min(out.size(), m_count - m_done);
        std::fill_n(out.begin(), got, m_frame);
        m_done += got;
        return got;
    }
    void rewind() override { m_done = 0; }

private:
    StereoFrame m_frame;
    std::size_t m_count, m_done = 0;
};

std::shared_ptr<swf::Movie> constantMovie(std::size_t bytes, std::uint8_t value)
{
    auto movie = std::make_shared<swf::Movie>();
    movie->bytes.assign(bytes, value);
    return movie;
}

// 8 bits, mono, so that a byte of 192 is a sample of 16384.
swf::Sound constantSound(const swf::Movie& movie)
{
    swf::Sound sound;
    sound.rate = 44100;
    sound.sixteenBit = false;
    sound.data = movie.bytes;
    sound.sampleCount = static_cast<std::uint32_t>(movie.bytes.size());
    return sound;
}

StereoFrame frameAfter(SoundPlayer& player, std::size_t frames)
{
    std::vector<StereoFrame> out(frames);
    player.mixer().mix(out);
    return out.back();
}

} // namespace

TEST(Mixer, AddsVoicesUnderTheirGainsAndClamps)
{
    Mixer mixer;
    mixer.add(std::make_unique<Steady>(StereoFrame{1000, -2000}, 3000));
    const VoiceId swapped = mixer.add(std::make_unique<Steady>(StereoFrame{100, 200}, 1500), {0, 0.5F, 2, 0});
    std::vector<StereoFrame> out(2000);
    mixer.mix(out);
    EXPECT_EQ(out[0], (StereoFrame{1100, -1800}));
    EXPECT_EQ(out[1499], out[0]);
    EXPECT_EQ(out[1500], (StereoFrame{1000, -2000})) << "a voice ends at its own frame";
    EXPECT_EQ(mixer.takeFinished().at(0).voice, swapped);

    mixer.setMaster({100, 0, 0, 100});
    mixer.mix(std::span(out).first(1));
    EXPECT_EQ(out[0], (StereoFrame{32767, -32768}));
    mixer.setMuted(true);
    mixer.mix(std::span(out).first(999));
    EXPECT_EQ(out[0], StereoFrame{});
    EXPECT_FALSE(mixer.isSilent());
    mixer.mix(std::span(out).first(1));
    EXPECT_TRUE(mixer.isSilent()) << "muted sounds go on and end";
}

TEST(SoundPlayer, StopsAndStartsEventSoundsAsTheirPlacementSays)
{
    const auto movie = constantMovie(44100, 192);
    const swf::Sound sound = constantSound(*movie);
    SoundPlayer player;
    player.startEvent(movie, 1, sound, {});
    player.startEvent(movie, 1, sound, {});
    EXPECT_NEAR(frameAfter(player, 10).left, 32767, 1);
    swf::SoundInfo info;
    info.noMultiple = true;
    player.startEvent(movie, 2, sound, info);
    player.startEvent(movie, 2, sound, info);
    info = {};
    info.stop = true;
    player.startEvent(movie, 1, sound, info);
    EXPECT_EQ(frameAfter(player, 10).left, 16384) << "one of number 2 is left";
    player.advance(2000);
    EXPECT_TRUE(player.mixer().isSilent());
}

TEST(SoundPlayer, AppliesTransformsOfTheOwnerAndAllAboveIt)
{
    const auto movie = constantMovie(44100, 192);
    const swf::Sound sound = constantSound(*movie);
    int clip = 0, parent = 0;
    SoundPlayer player([&](const void* owner) -> const void* { return owner == &clip ? &parent : nullptr; });
    const auto id = player.playSound(&clip, movie, 1, sound, {});
    player.setTransform(&clip, {100, 0, 0, 50, 100});
    EXPECT_EQ(frameAfter(player, 10), (StereoFrame{16384, 8192}));
    player.setTransform(&parent, {.volume = 50});
    EXPECT_EQ(frameAfter(player, 10), (StereoFrame{8192, 4096}));
    player.setTransform(nullptr, {0, 0, 100, 100, 100}); // all to the right speaker
    EXPECT_EQ(frameAfter(player, 10), (StereoFrame{0, 12288}));
    player.setMasterVolume(0.5);
    EXPECT_EQ(frameAfter(player, 10), (StereoFrame{0, 6144}));
    EXPECT_NEAR(player.positionMs(id), 40 / 44.1, 0.01);
    EXPECT_EQ(player.transform(&parent).volume, 50);
    player.setSoundTransform(id, {.volume = 50});
    EXPECT_EQ(frameAfter(player, 10), (StereoFrame{0, 3072}));
    player.stopOwner(&parent);
    EXPECT_TRUE(player.mixer().isSilent());
    EXPECT_TRUE(player.takeFinished().empty()) << "stopped is not finished";
}

TEST(SoundPlayer, TellsWhichScriptSoundsPlayedToTheirEnd)
{
    const auto movie = constantMovie(4410, 192);
    const swf::Sound sound = constantSound(*movie);
    SoundPlayer player;
    swf::SoundInfo info;
    info.loops = 2;
    const auto id = player.playSound(nullptr, movie, 1, sound, info);
    player.advance(150);
    EXPECT_TRUE(player.takeFinished().empty());
    EXPECT_NEAR(player.positionMs(id), 50, 0.1) << "into the second repetition";
    player.advance(60);
    EXPECT_EQ(player.takeFinished(), std::vector<stage::SoundId>{id});
    EXPECT_NEAR(player.positionMs(id), 100, 0.1);
}

TEST(SoundPlayer, KeepsAStreamInStepWithItsTimeline)
{
    // 10 frames a second. Frames 0 to 4 hold a loud block, 5 to 14 none, 15 to 19 a quiet one.
    auto movie = constantMovie(4410, 192);
    const std::size_t loud = movie->bytes.size();
    movie->bytes.resize(2 * loud, 160);
    swf::Timeline timeline;
    timeline.streamHead = swf::SoundStreamHead{swf::SoundFormat::PcmNative, 44100, false, false, 4410, 0};
    timeline.frames.resize(20);
    for (std::size_t i = 0; i < 20; ++i) {
        const base::Bytes bytes = movie->bytes;
        if (i < 5) timeline.frames[i].tags.emplace_back(swf::SoundStreamBlock{bytes.first(loud)});
        if (i >= 15) timeline.frames[i].tags.emplace_back(swf::SoundStreamBlock{bytes.subspan(loud)});
    }
    int clip = 0;
    SoundPlayer player;
    player.setFrameRate(10);
    const auto playFrames = [&](std::size_t first, std::size_t end) {
        StereoFrame last;
        for (std::size_t i = first; i < end; ++i) {
            if (!timeline.frames[i].tags.empty()) player.streamFrame(&clip, movie, timeline, i);
            last = frameAfter(player, 4410);
        }
        return last.left;
    };
    EXPECT_EQ(playFrames(0, 5), 16384);
    EXPECT_EQ(playFrames(5, 15), 0) << "the pause is kept";
    EXPECT_EQ(playFrames(15, 16), 8192) << "and the next block sounds with its frame";
    EXPECT_EQ(playFrames(2, 3), 16384) << "after a jump back";
    player.streamFrame(&clip, movie, timeline, 17);
    EXPECT_EQ(frameAfter(player, 100).left, 8192) << "after a jump on";
    player.stopStream(&clip);
    EXPECT_TRUE(player.mixer().isSilent());
}

} // namespace flash::sound
