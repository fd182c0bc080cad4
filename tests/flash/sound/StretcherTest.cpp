#include "flash/sound/Stretcher.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace flash::sound
{
namespace
{

constexpr double kHertz = 440;

/// A tone that counts how much of it was taken.
struct Tone {
    std::size_t taken = 0;
    Stretcher::Source source()
    {
        return [this](std::span<StereoFrame> frames) {
            for (StereoFrame& frame : frames) {
                const double angle = 2 * std::numbers::pi * kHertz * static_cast<double>(taken++) / kMixRate;
                frame.left = static_cast<std::int16_t>(10000 * std::sin(angle));
                frame.right = static_cast<std::int16_t>(-5000 * std::sin(angle));
            }
        };
    }
};

/// How often a second of sound goes up through zero.
double pitchOf(std::span<const StereoFrame> frames)
{
    int rises = 0;
    for (std::size_t i = 1; i < frames.size(); ++i) rises += frames[i - 1].left < 0 && frames[i].left >= 0;
    return static_cast<double>(rises) * kMixRate / static_cast<double>(frames.size());
}

TEST(Stretcher, KeepsPitchAndLoudnessAtEverySpeed)
{
    for (const double speed : {0.25, 0.5, 0.75, 1.25, 1.5, 2.0, 4.0}) {
        SCOPED_TRACE(speed);
        Tone tone;
        Stretcher stretcher;
        stretcher.setSpeed(speed);
        std::vector<StereoFrame> out(2 * kMixRate);
        for (std::size_t at = 0; at < out.size(); at += 700) // as a device asks, not in whole pieces
            stretcher.mix(std::span(out).subspan(at, std::min<std::size_t>(700, out.size() - at)),
                          tone.source());
        EXPECT_NEAR(pitchOf(out), kHertz, 6);
        EXPECT_NEAR(static_cast<double>(tone.taken), speed * static_cast<double>(out.size()),
                    2048 + 512 * speed);
        double power = 0;
        int largestStep = 0;
        for (std::size_t i = 1; i < out.size(); ++i) {
            power += out[i].left * out[i].left;
            largestStep = std::max(largestStep, std::abs(out[i].left - out[i - 1].left));
            ASSERT_NEAR(out[i].right, -out[i].left / 2, 2) << "the channels stay together";
        }
        EXPECT_NEAR(std::sqrt(power / static_cast<double>(out.size())), 10000 / std::sqrt(2.0), 400);
        EXPECT_LT(largestStep, 1000) << "a click; the tone itself steps by 627 at most";
    }
}

TEST(Stretcher, LetsNormalSpeedThrough)
{
    Tone tone, same;
    Stretcher stretcher;
    std::vector<StereoFrame> out(500), wanted(500);
    stretcher.setSpeed(2);
    stretcher.mix(out, tone.source());
    stretcher.setSpeed(1);
    same.taken = tone.taken;
    stretcher.mix(out, tone.source());
    same.source()(wanted);
    EXPECT_EQ(out, wanted) << "nothing is left of the other speed";
}

} // namespace
} // namespace flash::sound
