#include "Scenes.h"

#include "flash/render/Bands.h"

#include <gtest/gtest.h>

#include <chrono>

namespace flash::render
{
namespace
{

using namespace test;

int differences(const Surface& a, const Surface& b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) count += a.pixel(x, y) == b.pixel(x, y) ? 0 : 1;
    return count;
}

TEST(Bands, DrawTheSamePixelsAsOneThread)
{
    constexpr int kWidth = 260, kHeight = 190;
    for (const Quality quality : {Quality::Low, Quality::Medium, Quality::High, Quality::Best}) {
        for (unsigned seed = 1; seed <= 4; ++seed) {
            const Scene scene(seed, 40);
            RenderCache one, two;
            two.setSecondThread(SecondThread::Always);
            Surface expected(kWidth, kHeight), surface(kWidth, kHeight);
            for (int frame = 0; frame < 8; ++frame) {
                const auto draw = [&](RenderCache& cache, Surface& onto) {
                    Canvas canvas(onto.view(), quality, cache);
                    canvas.beginFrame();
                    if (frame % 3 == 2) canvas.setClip({15, 30, 200, 160});
                    scene.draw(canvas, kWidth, kHeight, frame % 3);
                    // Some more of it, as where several parts of a picture have changed.
                    canvas.setClip({10, 100, 90, 180});
                    scene.draw(canvas, kWidth, kHeight, frame % 3 + 1);
                    canvas.endFrame();
                };
                draw(one, expected);
                draw(two, surface);
                EXPECT_EQ(differences(surface, expected), 0)
                    << "seed " << seed << ", frame " << frame << ", quality " << static_cast<int>(quality);
            }
            ASSERT_NE(two.bands(), nullptr);
            EXPECT_TRUE(two.bands()->hasThread());
        }
    }
}

TEST(Bands, StartNoThreadForWhatIsLight)
{
    RenderCache cache;
    cache.setSecondThread(SecondThread::WhenHeavy);
    Surface surface(200, 200);
    const auto square = rectShape(2, 2, 60, 60, solid(255, 0, 0));
    for (int frame = 0; frame < 50; ++frame) {
        Canvas canvas(surface.view(), Quality::High, cache);
        canvas.beginFrame();
        canvas.clear({255, 255, 255, 255});
        canvas.drawShape(square, kStage);
        canvas.endFrame();
        EXPECT_EQ(surface.pixel(30, 30), kRed);
    }
    EXPECT_FALSE(cache.bands()->hasThread());

    // Each row of a very long frame counts: it is divided then, and no more when it has become short.
    for (int frame = 0; frame < 8; ++frame) cache.bands()->noteFrame(20);
    EXPECT_TRUE(cache.bands()->isWorthIt());
    for (int frame = 0; frame < 60; ++frame) {
        Canvas canvas(surface.view(), Quality::High, cache);
        canvas.beginFrame();
        canvas.clear({255, 255, 255, 255});
        canvas.drawShape(square, kStage);
        canvas.endFrame();
        EXPECT_EQ(surface.pixel(30, 30), kRed);
    }
    EXPECT_TRUE(cache.bands()->hasThread());
    EXPECT_FALSE(cache.bands()->isWorthIt());
}

TEST(Bands, DrawAtOnceWhatIsTooMuchToKeep)
{
    constexpr int kSide = 1024;
    RenderCache one, two;
    two.setSecondThread(SecondThread::Always);
    Surface expected(kSide, kSide), surface(kSide, kSide);
    const Scene scene(3);
    const auto draw = [&](RenderCache& cache, Surface& onto) {
        Canvas canvas(onto.view(), Quality::High, cache);
        canvas.beginFrame();
        scene.draw(canvas, kSide, kSide, 0);
        canvas.beginMask();
        canvas.drawShape(rectShape(10.5, 20, 900, 800, solid(0, 0, 0)), kStage);
        canvas.endMask();
        canvas.beginLayer({0, 0, 700, 700});
        for (std::uint32_t i = 0; i < 12; ++i) {
            // Gone when the call returns.
            swf::Bitmap picture{kSide, kSide, false, {}};
            picture.pixels.assign(std::size_t{kSide} * kSide, 0x40000000U | i << 20U);
            canvas.drawBitmap(picture, {0.9, 0.1, 0, 1, 3.0 * i, 0});
        }
        canvas.endLayer(swf::BlendMode::Multiply);
        canvas.popMask();
        canvas.endFrame();
    };
    draw(one, expected);
    draw(two, surface);
    EXPECT_EQ(differences(surface, expected), 0);
    EXPECT_FALSE(two.bands()->hasThread());
}

TEST(Bands, PassOnWhatIsThrownAndWaitForTheOther)
{
    Bands bands(SecondThread::Always, 1 << 20);
    struct Failure {
    };
    bool upperDone = false, lowerDone = false;
    EXPECT_THROW(bands.draw([&] { upperDone = true; }, [] { throw Failure{}; }), Failure);
    EXPECT_TRUE(upperDone);
    // The lower one would go on for ever if nobody told it.
    const auto forEver = [&] {
        try {
            while (true) guard::check();
        } catch (...) {
            lowerDone = true;
            throw;
        }
    };
    EXPECT_THROW(bands.draw([] { throw Failure{}; }, forEver), Failure);
    EXPECT_TRUE(lowerDone);
    // An interruption that comes while this thread waits ends both.
    guard::Guard guard;
    guard.renew();
    lowerDone = false;
    {
        const guard::Turn turn(guard, guard::Guard::Work::Drawing);
        EXPECT_THROW(bands.draw([&] { guard.interrupt(guard::Guard::Until::NextMovie); }, forEver),
                     guard::MovieEnded);
    }
    EXPECT_TRUE(lowerDone);
    int done = 0;
    bands.draw([] {}, [&] { ++done; });
    EXPECT_EQ(done, 1);
}

} // namespace
} // namespace flash::render
