#include "flash/render/BitmapRows.h"
#include "flash/render/WidePixels.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace flash::render
{
namespace
{

std::vector<std::uint32_t> noise(std::mt19937& random, int width, int height)
{
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::uint32_t& pixel : pixels) pixel = static_cast<std::uint32_t>(random());
    return pixels;
}

TEST(BitmapRows, AreTheSameOnEveryProcessor)
{
    if (!wide8::hasWide()) GTEST_SKIP() << "this processor has only the one";
    const BitmapLoops plain = plainBitmapLoops(), wide = wideBitmapLoops();
    std::mt19937 random(17);
    // Of one pixel each way, narrow ones that are tiled within a group, and larger ones.
    constexpr std::pair<int, int> kSizes[] = {{1, 1},   {2, 1},    {1, 9},    {3, 2},
                                              {16, 16}, {100, 37}, {16384, 2}};
    // In 1/65536 pixel: at rest, enlarged, about one to one, made smaller, and out of all reason.
    constexpr std::int64_t kSteps[] = {0, 700, 65000, 65536, 400000, std::int64_t{1} << 40};
    const auto between = [&](std::int64_t bound) {
        return static_cast<std::int64_t>(random() % (2 * static_cast<std::uint64_t>(bound) + 1)) - bound;
    };
    for (const auto& [width, height] : kSizes) {
        const std::vector<std::uint32_t> pixels = noise(random, width, height);
        const PixelSource source{pixels.data(), width, height, false};
        for (int round = 0; round < 600; ++round) {
            // Mostly somewhere over the bitmap or its borders, now and then far out.
            const std::int64_t reach = round % 10 == 0 ? 100000 : 2;
            const std::int64_t step = kSteps[static_cast<std::size_t>(round) % std::size(kSteps)];
            const BitmapRow row{between(reach * width << kPlaceBits), between(reach * height << kPlaceBits),
                                between(step), between(step)};
            const std::size_t count = 1 + random() % 70;
            for (const Edges edges : {Edges::Clamp, Edges::Repeat})
                for (const bool smooth : {false, true}) {
                    std::vector<std::uint32_t> one(count + 1, 7), other(count + 1, 7);
                    (smooth ? plain.smooth : plain.nearest)(source, edges, row, count, one.data());
                    (smooth ? wide.smooth : wide.nearest)(source, edges, row, count, other.data());
                    ASSERT_EQ(one, other) << width << "x" << height << ", round " << round << ", smooth "
                                          << smooth << ", repeat " << (edges == Edges::Repeat);
                }
        }
    }
}

TEST(BitmapRows, DoNotDependOnWhereTheyAreBegun)
{
    std::mt19937 random(4);
    const std::vector<std::uint32_t> pixels = noise(random, 50, 40);
    const PixelSource source{pixels.data(), 50, 40, false};
    for (const Smoothing smoothing : {Smoothing::Off, Smoothing::On})
        for (const Edges edges : {Edges::Clamp, Edges::Repeat}) {
            const auto paint =
                makeBitmapPaint(source, {3.137, 0.71, -0.77, 2.93, 20.3, -31.9}, edges, smoothing, {});
            std::vector<std::uint32_t> whole(900);
            paint->fetch(-300, 11, whole.size(), whole.data());
            for (std::size_t start = 0; start < whole.size(); start += 13) {
                std::vector<std::uint32_t> part(whole.size() - start);
                paint->fetch(static_cast<int>(start) - 300, 11, part.size(), part.data());
                ASSERT_TRUE(
                    std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(start)))
                    << start;
            }
        }
}

} // namespace
} // namespace flash::render
