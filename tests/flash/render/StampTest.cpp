#include "Scenes.h"

#include "flash/render/RenderCacheImpl.h"

#include <gtest/gtest.h>

namespace flash::render
{
namespace
{

using namespace test;

TEST(Stamps, PaintWhatConversionPaints)
{
    constexpr int kWidth = 220, kHeight = 160;
    for (const Quality quality : {Quality::Low, Quality::Medium, Quality::High, Quality::Best}) {
        const Scene scene(7);
        RenderCache cache;
        Surface surface(kWidth, kHeight);
        for (int frame = 0; frame < 24; ++frame) {
            const int time = frame % 6;
            Canvas canvas(surface.view(), quality, cache);
            // A part of the picture only, now and then: what it cuts is not stamped.
            if (frame % 5 == 4) canvas.setClip({30, 20, 150, 120});
            scene.draw(canvas, kWidth, kHeight, time);

            RenderCache fresh;
            Surface expected(kWidth, kHeight);
            Canvas plain(expected.view(), quality, fresh);
            if (frame % 5 == 4) plain.setClip({30, 20, 150, 120});
            scene.draw(plain, kWidth, kHeight, time);
            const IntRect seen = frame % 5 == 4 ? IntRect{30, 20, 150, 120} : expected.bounds();
            int different = 0;
            for (int y = seen.top; y < seen.bottom; ++y)
                for (int x = seen.left; x < seen.right; ++x)
                    different += surface.pixel(x, y) == expected.pixel(x, y) ? 0 : 1;
            EXPECT_EQ(different, 0) << "frame " << frame << ", quality " << static_cast<int>(quality);
            EXPECT_EQ(fresh.impl().stamps().usedBytes(), 0U);
        }
        const bool onGrid = quality == Quality::Medium || quality == Quality::High;
        EXPECT_EQ(cache.impl().stamps().usedBytes() > 0, onGrid);
    }
}

// A scroller a hundred screens long, moved to its end, and a picture wider than any screen.
TEST(Stamps, MayLieFarFromTheOriginOfTheirShape)
{
    for (const int far : {-40'000, 40'000, 100'000}) {
        const auto square = rectShape(far, 10, far + 40, 40, solid(255, 0, 0));
        RenderCache cache;
        for (int time = 0; time < 6; ++time) {
            Surface surface(100, 50);
            Canvas canvas(surface.view(), Quality::High, cache);
            canvas.drawShape(square, {0.05, 0, 0, 0.05, 20.0 - far + time % 3, 0});
            EXPECT_EQ(surface.pixel(20 + time % 3, 10), kRed);
            EXPECT_EQ(surface.pixel(59 + time % 3, 39), kRed);
            EXPECT_EQ(surface.pixel(19 + time % 3, 10), 0U);
            EXPECT_EQ(surface.pixel(60 + time % 3, 39), 0U);
        }
        EXPECT_GT(cache.impl().stamps().usedBytes(), 0U);
    }
    constexpr int kWide = 70'000;
    const auto band = rectShape(0, 0, kWide, 2, solid(255, 0, 0));
    RenderCache cache;
    Surface surface(kWide, 2);
    Canvas canvas(surface.view(), Quality::High, cache);
    for (int time = 0; time < 3; ++time) {
        canvas.clear({});
        canvas.drawShape(band, kStage);
        EXPECT_EQ(surface.pixel(kWide - 1, 1), kRed);
    }
}

TEST(Stamps, AreNotMadeOfWhatIsDrawnOnce)
{
    RenderCache cache;
    Surface surface(100, 100);
    Canvas canvas(surface.view(), Quality::High, cache);
    const auto square = rectShape(-20, -20, 20, 20, solid(255, 0, 0));
    for (int i = 0; i < 500; ++i) {
        const double c = 0.05 * std::cos(0.001 * i), s = 0.05 * std::sin(0.001 * i);
        canvas.drawShape(square, {c, s, -s, c, 50, 50});
        canvas.drawShape(rectShape(i % 9, 0, 20, 20, solid(0, 0, 255)), kStage);
    }
    EXPECT_EQ(cache.impl().stamps().usedBytes(), 0U);
}

TEST(Stamps, ServeWhateverIsTheSamePlaceOnTheGrid)
{
    RenderCache cache;
    Surface surface(100, 100);
    Canvas canvas(surface.view(), Quality::High, cache);
    const auto square = rectShape(0, 0, 19.7, 19.7, solid(255, 0, 0));
    const auto drawAt = [&](double x) {
        for (int again = 0; again < 3; ++again) canvas.drawShape(square, {0.05, 0, 0, 0.05, x, 10});
        return cache.impl().stamps().usedBytes();
    };
    const std::size_t one = drawAt(10.27);
    EXPECT_GT(one, 0U);
    // The right side of what it reaches is another pixel there.
    EXPECT_EQ(drawAt(10.32), one);
    EXPECT_EQ(drawAt(47.26), one);
    EXPECT_GT(drawAt(10.5), one);
}

TEST(Stamps, SomeStayOfALoopThatIsMoreThanTheBudget)
{
    constexpr std::size_t kBudget = std::size_t{64} << 10;
    constexpr int kKeys = 60, kRounds = 8;
    StampCache cache(kBudget);
    const auto shape = rectShape(0, 0, 10, 10, solid(255, 0, 0));
    int found = 0;
    for (int round = 0; round < kRounds; ++round) {
        found = 0;
        for (int i = 0; i < kKeys; ++i) {
            StampCache::Key key{shape.get(), 1.0 + i, 0, 0, 1};
            if (cache.find(key) != nullptr) {
                ++found;
                continue;
            }
            auto made = std::make_shared<StampedShape>();
            Stamp stamp({0, 0, 50, 100});
            const StyleSpan span{3, 40, 1, 256};
            for (int y = 0; y < 100; ++y) stamp.addRow(0, y, {&span, 1});
            made->parts.push_back(stamp.compacted());
            EXPECT_GT(made->bytes() * kKeys, kBudget);
            cache.keep(key, shape, std::move(made));
            EXPECT_LE(cache.usedBytes(), kBudget);
        }
    }
    EXPECT_GT(found, kKeys / 3);
}

TEST(Stamps, KeepToTheirBudgetAndForgetTheDead)
{
    constexpr std::size_t kBudget = std::size_t{256} << 10;
    RenderCache cache(kBudget);
    Surface surface(400, 400);
    Canvas canvas(surface.view(), Quality::High, cache);
    for (int i = 0; i < 300; ++i) {
        const auto star = rectShape(0, 0.5, 20 + i, 300, solid(255, 0, 0));
        for (int again = 0; again < 3; ++again) canvas.drawShape(star, kStage);
        ASSERT_LE(cache.usedBytes(), kBudget);
    }
    EXPECT_EQ(surface.pixel(300, 100), kRed);
}

} // namespace
} // namespace flash::render
