#include "flash/render/GradientRows.h"
#include "Shapes.h"
#include "flash/render/Compose.h"
#include "flash/render/Paint.h"
#include "flash/render/RampCache.h"

#include <gtest/gtest.h>

#include <random>

namespace flash::render
{
namespace
{

using swf::FillStyle;
using swf::Gradient;

constexpr GradientForm kForms[] = {GradientForm::Linear, GradientForm::Radial, GradientForm::Focal};
constexpr Gradient::Spread kSpreads[] = {Gradient::Spread::Pad, Gradient::Spread::Reflect,
                                         Gradient::Spread::Repeat};

std::vector<std::uint32_t> randomPixels(std::mt19937& random, std::size_t count, bool opaque)
{
    std::vector<std::uint32_t> pixels(count);
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t alpha = opaque ? 255 : random() % 256;
        pixel =
            alpha << 24 | random() % (alpha + 1) << 16 | random() % (alpha + 1) << 8 | random() % (alpha + 1);
    }
    return pixels;
}

// Rows of all kinds: flat, steep, far from the gradient, with numbers that are none.
GradientRow randomRow(std::mt19937& random, int round)
{
    std::uniform_real_distribution<float> part(-1, 1);
    constexpr float kSteps[] = {0, 1e-6F, 0.003F, 0.02F, 1, 300, 1e7F};
    const float step = kSteps[random() % std::size(kSteps)];
    GradientRow row{part(random) * (round % 3 == 0 ? 400.0F : 2.0F), part(random) * 2, part(random) * step,
                    part(random) * step, part(random) * 0.98F};
    if (round % 50 == 7) row.startX = INFINITY;
    return row;
}

TEST(GradientRows, AreTheSameOnEveryProcessor)
{
    std::mt19937 random(5);
    for (const GradientForm form : kForms)
        for (const Gradient::Spread spread : kSpreads) {
            const GradientLoops plain = plainGradientLoops(form, spread),
                                wide = wideGradientLoops(form, spread);
            if (wide.fill == nullptr) GTEST_SKIP() << "this processor has only the one";
            for (int round = 0; round < 400; ++round) {
                const std::vector<std::uint32_t> ramp = randomPixels(random, kRampSize, round % 2 == 0);
                const GradientRow row = randomRow(random, round);
                const std::size_t first = random() % kGradientBlock,
                                  count = 1 + random() % (kGradientBlock - first);
                std::vector<std::uint32_t> one(count + 1, 7), other(count + 1, 7);
                plain.fill(ramp.data(), row, first, count, one.data());
                wide.fill(ramp.data(), row, first, count, other.data());
                ASSERT_EQ(one, other) << static_cast<int>(form) << static_cast<int>(spread) << round;

                std::vector<std::uint8_t> coverage(count + 7);
                for (std::uint8_t& c : coverage)
                    c = static_cast<std::uint8_t>(std::min(255U, static_cast<unsigned>(random() % 400)));
                std::vector<std::uint32_t> composed = randomPixels(random, count + 1, round % 3 == 0);
                std::vector<std::uint32_t> laid = composed;
                composePixels(composed.data(), one.data(), coverage.data(), count);
                wide.lay(ramp.data(), row, first, coverage.data(), count, laid.data());
                ASSERT_EQ(composed, laid) << static_cast<int>(form) << static_cast<int>(spread) << round;
            }
        }
}

TEST(GradientRows, DoNotDependOnWhereTheyAreBegun)
{
    Gradient gradient;
    gradient.stops = {{0, {255, 0, 0, 255}}, {255, {0, 0, 255, 255}}};
    gradient.focalPoint = 0.3;
    const auto ramp = std::make_shared<const GradientRamp>(makeRamp(gradient, {}));
    for (const auto kind :
         {FillStyle::Kind::LinearGradient, FillStyle::Kind::RadialGradient, FillStyle::Kind::FocalGradient}) {
        const swf::Matrix toDevice{0.0171, 0.0063, -0.0042, 0.0153, 211.3, -17.9};
        const auto paint = makeGradientPaint(kind, gradient, ramp, toDevice);
        constexpr int kLeft = -300;
        std::vector<std::uint32_t> whole(900);
        paint->fetch(kLeft, 3, whole.size(), whole.data());
        for (int start = 0; start < 900; start += 7) {
            std::vector<std::uint32_t> part(whole.size() - static_cast<std::size_t>(start));
            paint->fetch(kLeft + start, 3, part.size(), part.data());
            ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + start)) << start;
        }
    }
}

// One row of a gradient from end to end over 256 pixels, as it looks without smoothed edges.
std::vector<std::uint32_t> betweenEntries(const Gradient& gradient, const swf::ColorTransform& color = {})
{
    const auto ramp = std::make_shared<const GradientRamp>(makeRamp(gradient, color));
    const auto paint = makeGradientPaint(FillStyle::Kind::LinearGradient, gradient, ramp,
                                         {1 / 128.0, 0, 0, 1 / 128.0, 128, 0}, GradientSample::Centre);
    std::vector<std::uint32_t> row(256);
    paint->fetch(0, 0, row.size(), row.data());
    return row;
}

TEST(GradientMixing, CutsLevelsOfLight)
{
    Gradient gradient;
    gradient.interpolation = Gradient::Interpolation::Linear;
    gradient.stops = {{0, {255, 20, 25, 255}}, {255, {14, 20, 255, 255}}};
    const auto row = betweenEntries(gradient);
    // 20 is less than two levels of light of 255, and one of them is seen as 13.
    for (const std::uint32_t pixel : row) ASSERT_EQ(pixel >> 8 & 0xFF, 13U);
    EXPECT_EQ(row[0], 0xFFFF0D16U);
    // Half of the light is more than half of the level.
    EXPECT_NEAR(row[128] >> 16 & 0xFF, 187, 1);
    gradient.interpolation = Gradient::Interpolation::Normal;
    EXPECT_EQ(betweenEntries(gradient)[128], 0xFF86148CU);
}

TEST(GradientMixing, PremultipliesLightTwice)
{
    Gradient gradient;
    gradient.interpolation = Gradient::Interpolation::Linear;
    gradient.stops = {{0, {255, 255, 0, 128}}, {255, {255, 255, 0, 128}}};
    // Twice as much light as there may be is seen as 1.353 of what there may be.
    EXPECT_EQ(betweenEntries(gradient)[9], 0x80575700U);
    gradient.interpolation = Gradient::Interpolation::Normal;
    EXPECT_EQ(betweenEntries(gradient)[9], 0x80808000U);
}

TEST(GradientMixing, TransformsBeforeItPremultiplies)
{
    Gradient gradient;
    gradient.stops = {{0, {200, 0, 0, 128}}, {255, {200, 0, 0, 128}}};
    swf::ColorTransform color;
    color.redMul = 128;
    color.blueAdd = 255;
    color.alphaAdd = 64;
    EXPECT_EQ(betweenEntries(gradient, color)[9], 0xC04B00C0U);
}

TEST(GradientRows, KeepRampsUnderColourTransforms)
{
    TintedRamps ramps;
    FillStyle red, green;
    red.kind = green.kind = FillStyle::Kind::LinearGradient;
    red.gradient.stops = {{0, {200, 0, 0, 255}}};
    green.gradient.stops = {{0, {0, 200, 0, 255}}};
    auto shape = test::shapeOf({{red, green}, {}, {}});
    swf::ColorTransform half;
    half.redMul = half.greenMul = 128;
    const auto first = ramps.ramp(shape, 0, 0, half), second = ramps.ramp(shape, 0, 1, half);
    EXPECT_EQ(first->colors[9], 0xFF640000U);
    EXPECT_EQ(second->colors[9], 0xFF006400U);
    EXPECT_EQ(ramps.ramp(shape, 0, 0, half), first);
    // So many that every place is taken by others in between.
    for (int add = 0; add < 4096; ++add) {
        swf::ColorTransform faded;
        faded.blueAdd = static_cast<std::int16_t>(add % 256);
        faded.redMul = static_cast<std::int16_t>(add / 256);
        ASSERT_EQ(ramps.ramp(shape, 0, 1, faded)->colors[0], 0xFF00C800U + static_cast<unsigned>(add % 256));
    }
    EXPECT_NE(ramps.ramp(shape, 0, 0, half), first);
    EXPECT_EQ(ramps.ramp(shape, 0, 0, half)->colors[9], 0xFF640000U);
}

} // namespace
} // namespace flash::render
