#include "flash/sound/Mixer.h"

#include "flash/sound/SoundPlayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

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

TEST(Mixer, RemembersWhatWasHeardLast)
{
    Mixer mixer;
    std::array<float, 4> left{}, right{};
    mixer.recent(left, right);
    EXPECT_EQ(left[3], 0) << "nothing yet";

    mixer.add(std::make_unique<Steady>(StereoFrame{16384, -8192}, 1000));
    mixer.skip(1000);
    mixer.recent(left, right);
    EXPECT_FLOAT_EQ(left[0], 0.5F);
    EXPECT_FLOAT_EQ(right[3], -0.25F);

    // The voice has come to its end: silence follows, and is remembered as well.
    mixer.skip(2);
    mixer.recent(left, right);
    EXPECT_FLOAT_EQ(left[1], 0.5F);
    EXPECT_EQ(left[2], 0);
    mixer.skip(1'000'000);
    mixer.recent(left, right);
    EXPECT_EQ(left[0], 0);

    // And so is what comes after the silence, among what is left of it.
    mixer.add(std::make_unique<Steady>(StereoFrame{16384, -8192}, 2));
    mixer.skip(2 + Mixer::kRecentFrames / 2);
    std::array<float, Mixer::kRecentFrames> allLeft{}, allRight{};
    mixer.recent(allLeft, allRight);
    EXPECT_EQ(std::ranges::count(allLeft, 0.5F), 2);
    EXPECT_EQ(std::ranges::count(allLeft, 0.0F), static_cast<long>(Mixer::kRecentFrames) - 2);
    EXPECT_FLOAT_EQ(allLeft[Mixer::kRecentFrames / 2 - 1], 0.5F);
}

TEST(SoundPlayer, PlaysAQueueUntilItHasEnded)
{
    SoundPlayer player;
    const auto queue = std::make_shared<stage::SampleQueue>();
    queue->frames.assign(100, {1000, 2000});
    const stage::SoundId id = player.playQueue(queue);
    EXPECT_EQ(frameAfter(player, 100), (StereoFrame{1000, 2000}));
    EXPECT_EQ(frameAfter(player, 10), StereoFrame{}) << "it waits for more";
    EXPECT_TRUE(player.takeFinished().empty());
    queue->frames.assign(10, {3000, 3000});
    queue->isEnded = true;
    EXPECT_EQ(frameAfter(player, 10), (StereoFrame{3000, 3000}));
    frameAfter(player, 10);
    EXPECT_EQ(player.takeFinished(), std::vector<stage::SoundId>{id});
}

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

    mixer.setMuted(true);
    mixer.mix(std::span(out).first(999));
    EXPECT_EQ(out[Mixer::kRampFrames], StereoFrame{});
    EXPECT_FALSE(mixer.isSilent());
    mixer.mix(std::span(out).first(2));
    EXPECT_TRUE(mixer.isSilent()) << "muted sounds go on and end";
}

TEST(Mixer, HasNoClicks)
{
    Mixer mixer;
    const VoiceId voice = mixer.add(std::make_unique<Steady>(StereoFrame{20000, -20000}, 1 << 20));
    std::vector<StereoFrame> out(4000);
    const auto largestStep = [&out](StereoFrame before) {
        int largest = 0;
        for (const StereoFrame frame : out) {
            largest =
                std::max({largest, std::abs(frame.left - before.left), std::abs(frame.right - before.right)});
            before = frame;
        }
        return largest;
    };
    const auto next = [&] {
        const StereoFrame before = out.back();
        mixer.mix(out);
        return largestStep(before);
    };
    mixer.mix(out);
    EXPECT_EQ(out[0], (StereoFrame{20000, -20000})) << "what begins loud begins at once";
    constexpr int kGentle = 20000 / static_cast<int>(Mixer::kRampFrames) + 1;
    mixer.setGains(voice, {0.25F, 0, 0, 0.25F});
    EXPECT_LE(next(), kGentle);
    EXPECT_EQ(out.back(), (StereoFrame{5000, -5000}));
    mixer.setMuted(true);
    EXPECT_LE(next(), kGentle);
    mixer.setMuted(false);
    EXPECT_LE(next(), kGentle);
    EXPECT_EQ(out.back(), (StereoFrame{5000, -5000}));
    mixer.remove(voice);
    EXPECT_FALSE(mixer.isPlaying(voice));
    EXPECT_LE(next(), kGentle);
    EXPECT_EQ(out.back(), StereoFrame{});
    EXPECT_TRUE(mixer.isSilent());
    EXPECT_TRUE(mixer.takeFinished().empty());
}

TEST(Mixer, TurnsDownWhatIsTooLoudAndComesBack)
{
    Mixer mixer;
    for (int i = 0; i < 3; ++i) mixer.add(std::make_unique<Steady>(StereoFrame{20000, 10000}, 1000));
    mixer.add(std::make_unique<Steady>(StereoFrame{16000, 16001}, 1 << 20));
    std::vector<StereoFrame> out(40000);
    mixer.mix(out);
    EXPECT_EQ(out[500].left, 32767);
    EXPECT_NEAR(out[500].right, 32767 * 46001 / 76000, 30) << "both alike, nothing is cut off";
    EXPECT_LT(out[1200].left, 15000) << "slowly back";
    EXPECT_EQ(out.back(), (StereoFrame{16000, 16001})) << "exactly as it was";
}

TEST(Mixer, DoesNotDependOnPortions)
{
    const auto mixed = [](std::size_t portion) {
        Mixer mixer;
        const VoiceId first = mixer.add(std::make_unique<Steady>(StereoFrame{30000, -30000}, 3000));
        mixer.add(std::make_unique<Steady>(StereoFrame{9000, 20000}, 2000));
        std::vector<StereoFrame> out(4096);
        for (std::size_t at = 0; at < out.size(); at += portion) {
            if (at == 1024) mixer.setMaster({0.5F, 0.1F, 0, 0.9F});
            if (at == 2048) mixer.remove(first);
            mixer.mix(std::span(out).subspan(at, std::min(portion, out.size() - at)));
        }
        return out;
    };
    EXPECT_EQ(mixed(64), mixed(1024));
}

TEST(Mixer, PlaysAsManyVoicesAsTheGenuinePlayer)
{
    Mixer mixer;
    std::vector<VoiceId> voices;
    for (int i = 0; i < 40; ++i)
        voices.push_back(mixer.add(std::make_unique<Steady>(StereoFrame{1, 1}, 5000)));
    EXPECT_EQ(std::ranges::count(voices, 0U), 8);
    std::vector<StereoFrame> out(10);
    mixer.mix(out);
    EXPECT_EQ(out[0].left, 32);
    mixer.remove(voices[0]);
    EXPECT_NE(mixer.add(std::make_unique<Steady>(StereoFrame{1, 1}, 10)), 0U)
        << "though the other still fades";
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
    EXPECT_EQ(frameAfter(player, 20'000).left, 16384) << "one of number 2 is left";
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
    EXPECT_EQ(frameAfter(player, 300), (StereoFrame{16384, 8192}));
    player.setTransform(&parent, {.volume = 50});
    EXPECT_EQ(frameAfter(player, 300), (StereoFrame{8192, 4096}));
    player.setTransform(nullptr, {0, 0, 100, 100, 100}); // all to the right speaker
    EXPECT_EQ(frameAfter(player, 300), (StereoFrame{0, 12288}));
    player.setMasterVolume(0.5);
    EXPECT_EQ(frameAfter(player, 300), (StereoFrame{0, 6144}));
    EXPECT_NEAR(player.positionMs(id), 1200 / 44.1, 0.01);
    EXPECT_EQ(player.transform(&parent).volume, 50);
    player.setSoundTransform(id, {.volume = 50});
    EXPECT_EQ(frameAfter(player, 300), (StereoFrame{0, 3072}));
    player.stopOwner(&parent);
    EXPECT_EQ(frameAfter(player, 300), StereoFrame{});
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
    EXPECT_EQ(frameAfter(player, 300).left, 8192) << "after a jump on";
    player.stopStream(&clip);
    EXPECT_EQ(frameAfter(player, 300).left, 0);
    EXPECT_TRUE(player.mixer().isSilent());
}

TEST(SoundPlayer, StreamsDoNotDriftInTenMinutes)
{
    // 12 frames a second at the lowest rate, 5512.5 Hz: 459 samples to the frame, and every eighth frame a
    // few more so that it comes out even. The first samples of each second are loud.
    constexpr int kFrames = 12 * 600;
    std::vector<std::size_t> begins;
    auto movie = std::make_shared<swf::Movie>();
    for (int i = 0; i <= kFrames; ++i) {
        begins.push_back(movie->bytes.size());
        const auto end = static_cast<std::size_t>(std::lround((i + 1) * 5512.5 / 12));
        const std::size_t from = movie->bytes.size();
        movie->bytes.resize(end, 128);
        if (i % 12 == 0) std::fill_n(movie->bytes.begin() + static_cast<std::ptrdiff_t>(from), 50, 250);
    }
    swf::Timeline timeline;
    timeline.streamHead = swf::SoundStreamHead{swf::SoundFormat::PcmNative, 5512, false, false, 459, 0};
    timeline.frames.resize(kFrames);
    for (std::size_t i = 0; i < kFrames; ++i)
        timeline.frames[i].tags.emplace_back(
            swf::SoundStreamBlock{base::Bytes(movie->bytes).subspan(begins[i], begins[i + 1] - begins[i])});
    int clip = 0;
    SoundPlayer player;
    player.setFrameRate(12);
    std::vector<StereoFrame> out(kMixRate / 12);
    double worstMs = 0;
    for (std::size_t i = 0; i < kFrames; ++i) {
        player.streamFrame(&clip, movie, timeline, i);
        player.mixer().mix(out);
        if (i % 12 != 0) continue;
        const auto loud = std::ranges::find_if(out, [](StereoFrame frame) { return frame.left > 15000; });
        ASSERT_NE(loud, out.end()) << "second " << i / 12;
        worstMs = std::max(worstMs, 1000.0 * static_cast<double>(loud - out.begin()) / kMixRate);
    }
    EXPECT_LT(worstMs, 2);
}

} // namespace flash::sound
