#include "flash/render/BitmapOps.h"

#include <gtest/gtest.h>

namespace flash::render
{
namespace
{

swf::Bitmap bitmap(int width, int height, bool opaque = false, std::uint32_t color = 0)
{
    swf::Bitmap made{
        width, height, opaque,
        std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
    fillRect(made, boundsOf(made), color);
    return made;
}

TEST(BitmapOps, ColoursSurviveStorageAsFarAsTheirAlphaAllows)
{
    for (std::uint32_t alpha = 1; alpha < 256; ++alpha) {
        const int step = 255 / static_cast<int>(alpha) + 1; // what one level of the stored colour stands for
        for (const int level : {0, 1, 18, 52, 86, 127, 128, 200, 254, 255}) {
            const std::uint32_t color = alpha << 24 | static_cast<std::uint32_t>(level) * 0x010101;
            const std::uint32_t back = unmultiplied(premultiplied(color));
            EXPECT_EQ(back >> 24, alpha);
            EXPECT_NEAR(static_cast<int>(back & 255), level, step) << alpha;
            EXPECT_EQ((back >> 16 & 255), (back & 255));
        }
    }
    // The genuine player's way of dividing does not give every white back.
    EXPECT_EQ(unmultiplied(premultiplied(0x80FFFFFF)), 0x80FFFFFFU);
    EXPECT_EQ(unmultiplied(premultiplied(0xC3FFFFFF)), 0xC3FEFEFEU);
    EXPECT_EQ(unmultiplied(premultiplied(0x00FFFFFF)), 0U);
}

TEST(BitmapOps, AnOpaqueAlphaBitmapHasNoSay)
{
    const swf::Bitmap source = bitmap(4, 1, false, 0x80FFFFFF);
    const swf::Bitmap glass = bitmap(2, 1, false, 0x80000000), wall = bitmap(2, 1, true, 0);
    swf::Bitmap target = bitmap(4, 1);
    copyPixels(target, 0, 0, source, boundsOf(source), CopyAlpha::Replace, AlphaSource{glass, 0, 0});
    EXPECT_EQ(pixelAt(target, 1, 0) >> 24, 0x40U);
    EXPECT_EQ(pixelAt(target, 2, 0), 0U); // beyond the glass
    copyPixels(target, 0, 0, source, boundsOf(source), CopyAlpha::Replace, AlphaSource{wall, 0, 0});
    EXPECT_EQ(pixelAt(target, 1, 0), 0x80FFFFFFU);
    EXPECT_EQ(pixelAt(target, 3, 0), 0x80FFFFFFU);
}

TEST(BitmapOps, CopiesThroughAlphaKeepTheirColourAndCutTheirAlpha)
{
    struct Case {
        std::uint32_t source, glass, copied;
    };
    // The last two: what is whole on one side stays what it is on the other.
    for (const Case& c : {Case{0xAA2288DD, 0xEE, 0x9E165589}, Case{0xAA2288DD, 0x66, 0x4309243A},
                          Case{0x44888888, 0xEE, 0x3F212121}, Case{0xFF888888, 0x66, 0x66363636},
                          Case{0xAA2288DD, 0xFF, 0xAA175B93}}) {
        const swf::Bitmap source = bitmap(1, 1, false, c.source), glass = bitmap(1, 1, false, c.glass << 24);
        swf::Bitmap target = bitmap(1, 1);
        copyPixels(target, 0, 0, source, boundsOf(source), CopyAlpha::Replace, AlphaSource{glass, 0, 0});
        EXPECT_EQ(target.pixels[0], c.copied) << std::hex << c.source << ' ' << c.glass;
    }
}

TEST(BitmapOps, AlphaAloneIsNeverMadeMore)
{
    swf::Bitmap target = bitmap(2, 1, false, 0x40FFFFFF);
    transformColors(target, boundsOf(target), {.alphaMul = 512});
    EXPECT_EQ(pixelAt(target, 0, 0), 0x40FFFFFFU);
    transformColors(target, boundsOf(target), {.redMul = 128, .alphaMul = 512});
    EXPECT_EQ(pixelAt(target, 0, 0), 0x807FFFFFU); // stored as 0x80408080
}

TEST(BitmapOps, CopiesAreCutAtBothEnds)
{
    swf::Bitmap source = bitmap(4, 4);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) setPixelAt(source, x, y, 0xFF000000U | static_cast<unsigned>(y * 16 + x));
    struct Case {
        const char* name;
        int x, y;
        IntRect from;
        IntRect written;
        std::uint32_t first;
    };
    constexpr Case kCases[] = {
        {"whole", 0, 0, {0, 0, 4, 4}, {0, 0, 4, 4}, 0x00},
        {"target sticks out to the left", -2, 1, {0, 0, 4, 4}, {0, 1, 2, 4}, 0x02},
        {"source sticks out to the left", 1, 1, {-1, -1, 2, 2}, {2, 2, 4, 4}, 0x00},
        {"nothing left", 9, 9, {0, 0, 4, 4}, {}, 0},
        {"as far away as numbers go", 2147483647, -2147483647, {0, 0, 4, 4}, {}, 0},
        {"a rectangle without end", 0, 0, {-2147483647, -2147483647, 2147483647, 2147483647}, {}, 0},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        swf::Bitmap target = bitmap(4, 4);
        copyPixels(target, c.x, c.y, source, c.from, CopyAlpha::Replace);
        EXPECT_EQ(colorBounds(target, 0xFF000000, 0xFF000000, true), c.written);
        if (c.written.isEmpty()) continue;
        EXPECT_EQ(pixelAt(target, c.written.left, c.written.top), 0xFF000000U | c.first);
    }
}

TEST(BitmapOps, ScrollingReadsWhatWasThereBefore)
{
    swf::Bitmap picture = bitmap(5, 1);
    for (int x = 0; x < 5; ++x) setPixelAt(picture, x, 0, 0xFF000000U | static_cast<unsigned>(x));
    scroll(picture, 2, 0);
    constexpr std::uint32_t kExpected[] = {0, 1, 0, 1, 2};
    for (int x = 0; x < 5; ++x) EXPECT_EQ(pixelAt(picture, x, 0) & 0xFF, kExpected[x]) << x;
}

TEST(BitmapOps, FloodStopsAtOtherColoursAndAtCorners)
{
    // A diagonal wall: areas that touch by corners only are not connected.
    swf::Bitmap picture = bitmap(4, 4, true, 0xFFFFFF);
    for (int i = 0; i < 4; ++i) setPixelAt(picture, i, i, 0xFF000000);
    floodFill(picture, 3, 0, 0xFFFF0000);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            const std::uint32_t expected = x == y ? 0xFF000000U : x > y ? 0xFFFF0000U : 0xFFFFFFFFU;
            EXPECT_EQ(pixelAt(picture, x, y), expected) << x << ' ' << y;
        }
    }
    floodFill(picture, -1, 7, 0); // outside: nothing happens
}

TEST(BitmapOps, OpaqueBitmapsStayOpaque)
{
    swf::Bitmap target = bitmap(2, 1, true, 0x102030);
    const swf::Bitmap glass = bitmap(2, 1, false, 0x80FF0000);
    copyPixels(target, 0, 0, glass, boundsOf(glass), CopyAlpha::Replace);
    EXPECT_EQ(pixelAt(target, 0, 0) >> 24, 255U);
    copyChannel(target, 0, 0, glass, boundsOf(glass), 8, 8);
    merge(target, 0, 0, glass, boundsOf(glass), {256, 256, 256, 256});
    threshold(target, 0, 0, glass, boundsOf(glass), {Comparison::NotEqual, 0, 0xFF, 0x00112233, true});
    noise(target, {1, 0, 255, 15, false});
    EXPECT_EQ(colorBounds(target, 0xFF000000, 0xFF000000, false), IntRect{});
}

TEST(BitmapOps, DissolvingVisitsEachPixelOnce)
{
    const swf::Bitmap source = bitmap(7, 5, false, 0xFF00FF00);
    swf::Bitmap target = bitmap(7, 5);
    std::int32_t seed = 12345;
    int filled = 0;
    for (int round = 0; round < 5; ++round) {
        seed = pixelDissolve(target, 0, 0, source, boundsOf(source), seed, 7, 0);
        int now = 0;
        for (const std::uint32_t pixel : target.pixels) now += pixel != 0;
        EXPECT_EQ(now, filled + 7);
        filled = now;
    }
}

TEST(BitmapOps, DissolvingSetsThePixelItStartsFromToo)
{
    const swf::Bitmap source = bitmap(7, 5, false, 0xFF00FF00);
    swf::Bitmap target = bitmap(7, 5);
    pixelDissolve(target, 0, 0, source, boundsOf(source), 0, 34, 0);
    for (const std::uint32_t pixel : target.pixels) EXPECT_EQ(pixel, 0xFF00FF00U);
}

TEST(BitmapOps, PerlinNoiseRefusesWhatIsNoSize)
{
    swf::Bitmap picture = bitmap(8, 8, true, 0x123456);
    for (const double base : {0.0, static_cast<double>(NAN), static_cast<double>(INFINITY), 1e-310})
        perlinNoise(picture, {base, 10, 3, 1, true, true, 7, false, {}, {}});
    EXPECT_EQ(pixelAt(picture, 3, 3), 0xFF123456U);
    perlinNoise(picture, {1e-300, 1e300, 100, 1, true, true, 15, false, {{INFINITY, 0}}, {}});
    perlinNoise(picture, {10, 10, 2, 1, false, true, 7, true, {}, {}});
    const std::uint32_t gray = pixelAt(picture, 3, 3);
    EXPECT_EQ(gray >> 16 & 255, gray & 255);
}

// Levels by hand from the reference algorithm.
TEST(BitmapOps, PerlinNoiseIsTheTurbulenceOfItsSeed)
{
    swf::Bitmap picture = bitmap(16, 12);
    perlinNoise(picture, {10, 8, 3, 42, false, true, 7, false, {}, {}});
    EXPECT_EQ(pixelAt(picture, 0, 0), 0xFF7F7F7FU);
    EXPECT_EQ(pixelAt(picture, 3, 5), 0xFF000000U | 151U << 16 | 76U << 8 | 123U);
    EXPECT_EQ(pixelAt(picture, 15, 11), 0xFF000000U | 188U << 16 | 176U << 8 | 138U);
    perlinNoise(picture, {10, 8, 3, -5, false, true, 1 | 8, true, {}, {}});
    EXPECT_EQ(pixelAt(picture, 3, 5) >> 24, 196U);
    perlinNoise(picture, {10, 5, 3, 42, true, false, 7, false, {}, {}});
    EXPECT_EQ(pixelAt(picture, 7, 2), 0xFF000000U | 78U << 16 | 54U << 8 | 142U);
}

TEST(BitmapOps, StitchedPerlinNoiseGoesOnWhereItBegan)
{
    swf::Bitmap picture = bitmap(16, 12), moved = bitmap(16, 12);
    perlinNoise(picture, {7, 5, 2, 9, true, true, 7, false, {}, {}});
    perlinNoise(moved, {7, 5, 2, 9, true, true, 7, false, {{16, -12}, {-32, 24}}, {}});
    EXPECT_EQ(picture.pixels, moved.pixels);
    perlinNoise(moved, {7, 5, 2, 9, true, true, 7, false, {{3, 0}, {3, 0}}, {}});
    EXPECT_EQ(pixelAt(moved, 2, 4), pixelAt(picture, 5, 4));
}

} // namespace
} // namespace flash::render
