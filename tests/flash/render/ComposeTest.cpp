#include "flash/render/Compose.h"
#include "flash/render/CellSums.h"
#include "flash/render/ComposeWide.h"
#include "flash/render/Pixel.h"
#include "flash/render/WidePixels.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace flash::render
{
namespace
{

using Pixels = std::vector<std::uint32_t>;

struct Loops {
    void (*solid)(std::uint32_t*, std::size_t, std::uint32_t);
    void (*coveredSolid)(std::uint32_t*, const std::uint8_t*, std::size_t, std::uint32_t);
    void (*pixels)(std::uint32_t*, const std::uint32_t*, std::size_t);
    void (*coveredPixels)(std::uint32_t*, const std::uint32_t*, const std::uint8_t*, std::size_t);
};
constexpr Loops kPlain{plain::composeSolid, plain::composeSolid, plain::composePixels, plain::composePixels};
constexpr Loops kWide{wide8::composeSolid, wide8::composeSolid, wide8::composePixels, wide8::composePixels};

std::uint32_t randomPixel(std::mt19937& random)
{
    // A third opaque, a third wholly transparent or nearly so.
    const std::uint32_t kind = random() % 3, alpha = kind == 0   ? 255
                                                     : kind == 1 ? random() % 3
                                                                 : random() % 256;
    const auto channel = [&] { return static_cast<std::uint32_t>(random()) % (alpha + 1); };
    return packPixel(alpha, channel(), channel(), channel());
}

// Stretches that are covered wholly or not at all, and pieces of edges.
std::vector<std::uint8_t> randomCoverage(std::mt19937& random, std::size_t count)
{
    std::vector<std::uint8_t> coverage;
    while (coverage.size() < count) {
        const auto kind = random() % 3;
        for (auto left = 1 + random() % 20; left > 0; --left)
            coverage.push_back(static_cast<std::uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : random()));
    }
    // What is read beyond the end is found by the sanitizers.
    coverage.resize(count);
    coverage.shrink_to_fit();
    return coverage;
}

TEST(Compose, IsTheSameOnEveryProcessorAndPixelByPixel)
{
    std::mt19937 random(23);
    for (int round = 0; round < 3000; ++round) {
        const std::size_t count = random() % 60;
        Pixels below(count + 1), source(count);
        for (std::uint32_t& pixel : below) pixel = randomPixel(random);
        const bool opaque = round % 4 == 0;
        for (std::uint32_t& pixel : source) pixel = randomPixel(random) | (opaque ? 0xFF000000 : 0);
        const std::vector<std::uint8_t> coverage = randomCoverage(random, count);
        const std::uint32_t color = randomPixel(random);
        enum class How { Solid, CoveredSolid, Pixels, CoveredPixels };
        for (const How how : {How::Solid, How::CoveredSolid, How::Pixels, How::CoveredPixels}) {
            Pixels wanted = below;
            for (std::size_t i = 0; i < count; ++i) {
                const bool isSolid = how == How::Solid || how == How::CoveredSolid;
                std::uint32_t pixel = isSolid ? color : source[i];
                if (how == How::CoveredSolid || how == How::CoveredPixels)
                    pixel = scale255(pixel, coverage[i]);
                wanted[i] = over(pixel, wanted[i]);
            }
            for (const bool isWide : {false, true}) {
                if (isWide && !wide8::hasWide()) continue;
                Pixels got = below;
                const Loops& loops = isWide ? kWide : kPlain;
                switch (how) {
                case How::Solid: loops.solid(got.data(), count, color); break;
                case How::CoveredSolid: loops.coveredSolid(got.data(), coverage.data(), count, color); break;
                case How::Pixels: loops.pixels(got.data(), source.data(), count); break;
                case How::CoveredPixels:
                    loops.coveredPixels(got.data(), source.data(), coverage.data(), count);
                    break;
                }
                ASSERT_EQ(got, wanted)
                    << "round " << round << ", how " << static_cast<int>(how) << ", wide " << isWide;
            }
        }
    }
}

TEST(Compose, LaysSumsOfARowLikeTheirCoverage)
{
    std::mt19937 random(29);
    for (int round = 0; round < 2000; ++round) {
        // Outlines that open and close again, in the units of quarters of pixels.
        const std::size_t count = 8 * (1 + random() % 10), room = count - random() % 8;
        std::vector<std::int16_t> sums(count, 0);
        for (auto lines = random() % 6; lines > 0; --lines) {
            const auto x = random() % (count - 1);
            const int sign = random() % 2 == 0 ? 1 : -1, part = static_cast<int>(random() % 17);
            sums[x] = static_cast<std::int16_t>(sums[x] + sign * part);
            sums[x + 1] = static_cast<std::int16_t>(sums[x + 1] + sign * (16 - part));
        }
        const FillRule rule = round % 2 == 0 ? FillRule::EvenOdd : FillRule::NonZero;
        Pixels wanted(count + 8);
        for (std::uint32_t& pixel : wanted) pixel = randomPixel(random);
        Pixels got = wanted;
        const std::uint32_t color = randomPixel(random);
        std::vector<std::int16_t> copy = sums;
        std::vector<std::uint8_t> coverage(count);
        std::int32_t carry = 0, otherCarry = 0;
        takeCoverage(copy.data(), count, carry, rule, coverage.data());
        composeSolid(wanted.data(), coverage.data(), room, color);
        laySolid(sums.data(), static_cast<int>(count), otherCarry, rule, color, got.data(),
                 static_cast<int>(room));
        ASSERT_EQ(got, wanted) << round;
        ASSERT_EQ(carry, otherCarry);
        ASSERT_EQ(sums, copy);
    }
}

} // namespace
} // namespace flash::render
