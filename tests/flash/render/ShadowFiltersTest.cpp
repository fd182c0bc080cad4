#include "flash/render/Filters.h"

#include "Shapes.h"
#include "flash/render/Pixel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

namespace flash::render
{
namespace
{

using namespace test;

Surface square(int size, int from, int to, std::uint32_t color)
{
    Surface surface(size, size);
    for (int y = from; y < to; ++y) std::fill(surface.row(y) + from, surface.row(y) + to, color);
    return surface;
}

TEST(ShadowFilters, ShadowFallsWhereTheAngleSays)
{
    swf::DropShadowFilter filter;
    filter.color = {0, 0, 0, 255};
    filter.distance = 3;
    filter.strength = 1;
    struct Case {
        const char* name;
        double angle;
        int x, y;
    };
    for (const Case& c : {Case{"right", 0, 3, 0}, Case{"down", std::numbers::pi / 2, 0, 3},
                          Case{"left", std::numbers::pi, -3, 0},
                          // 2.12 pixels each way, of which whole ones count.
                          Case{"down and right", std::numbers::pi / 4, 2, 2}}) {
        SCOPED_TRACE(c.name);
        filter.angle = c.angle;
        Surface surface = square(20, 8, 12, kRed);
        applyFilter(filter, surface.view());
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 20; ++x) {
                const auto within = [](int v) { return v >= 8 && v < 12; };
                const std::uint32_t expected = within(x) && within(y)               ? kRed
                                               : within(x - c.x) && within(y - c.y) ? kBlack
                                                                                    : 0;
                ASSERT_EQ(surface.pixel(x, y), expected) << x << "," << y;
            }
    }
}

TEST(ShadowFilters, ShadowsCombineWithTheirObjectAsTheirFlagsSay)
{
    struct Case {
        const char* name;
        bool inner, knockout, composite;
        std::uint32_t inShadowOnly, inBoth, inObjectOnly;
    };
    // A red square from 8 to 12, its black shadow 2 to the right.
    constexpr Case kCases[] = {
        {"outer", false, false, true, kBlack, kRed, kRed},
        {"outer, knocked out", false, true, true, kBlack, 0, 0},
        {"outer, object hidden", false, false, false, kBlack, kBlack, 0},
        {"inner", true, false, true, 0, kRed, kBlack},
        {"inner, knocked out", true, true, true, 0, 0, kBlack},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        swf::DropShadowFilter filter;
        filter.color = {0, 0, 0, 255};
        filter.distance = 2;
        filter.strength = 1;
        filter.inner = c.inner;
        filter.knockout = c.knockout;
        filter.compositeSource = c.composite;
        Surface surface = square(20, 8, 12, kRed);
        applyFilter(filter, surface.view());
        EXPECT_EQ(surface.pixel(13, 10), c.inShadowOnly);
        EXPECT_EQ(surface.pixel(11, 10), c.inBoth);
        EXPECT_EQ(surface.pixel(8, 10), c.inObjectOnly);
    }
}

TEST(ShadowFilters, GlowIsStrengthTimesTheBlurredAlpha)
{
    swf::GlowFilter filter;
    filter.color = {0, 255, 0, 255};
    filter.blurX = 5;
    filter.blurY = 1;
    filter.strength = 2;
    Surface surface = square(20, 8, 12, kRed);
    applyFilter(filter, surface.view());
    EXPECT_EQ(surface.pixel(8, 10), kRed);
    EXPECT_EQ(surface.pixel(12, 10) & 0xFF00, 0xCC00U); // two of five, twice
    EXPECT_EQ(surface.pixel(13, 10) & 0xFF00, 0x6600U);
    EXPECT_EQ(surface.pixel(14, 10), 0U);
}

TEST(ShadowFilters, BevelsLightTheSideTheirAngleComesFrom)
{
    swf::BevelFilter filter;
    filter.highlight = {255, 255, 255, 255};
    filter.shadow = {0, 0, 0, 255};
    filter.distance = 1;
    filter.angle = 0;
    filter.strength = 1;
    filter.inner = true;
    Surface inner = square(20, 8, 12, kRed);
    applyFilter(filter, inner.view());
    EXPECT_EQ(inner.pixel(8, 10), kWhite);
    EXPECT_EQ(inner.pixel(10, 10), kRed);
    EXPECT_EQ(inner.pixel(11, 10), kBlack);
    EXPECT_EQ(inner.pixel(7, 10), 0U);
    filter.inner = false;
    Surface outer = square(20, 8, 12, kRed);
    applyFilter(filter, outer.view());
    EXPECT_EQ(outer.pixel(7, 10), kWhite);
    EXPECT_EQ(outer.pixel(8, 10), kRed);
    EXPECT_EQ(outer.pixel(12, 10), kBlack);

    swf::GradientFilter gradient;
    gradient.bevel = gradient.inner = true;
    gradient.stops = {{0, {255, 255, 255, 255}}, {128, {255, 0, 0, 0}}, {255, {0, 0, 0, 255}}};
    gradient.distance = gradient.strength = 1;
    Surface ramped = square(20, 8, 12, kRed);
    applyFilter(gradient, ramped.view());
    EXPECT_EQ(ramped.pixel(8, 10), kWhite);
    EXPECT_EQ(ramped.pixel(10, 10), kRed);
    EXPECT_EQ(ramped.pixel(11, 10), kBlack);
}

TEST(ShadowFilters, InnerEffectsSeeWhatTheirBlurLeavesOutside)
{
    swf::DropShadowFilter shadow;
    shadow.color = {0, 0, 0, 200};
    shadow.blurX = shadow.blurY = 6;
    shadow.distance = 5;
    shadow.angle = 0.8;
    shadow.strength = 1;
    swf::GlowFilter glow;
    glow.color = {0, 0, 128, 255};
    glow.blurX = 6;
    glow.blurY = 3;
    glow.strength = 1.5;
    glow.passes = 3;
    swf::BevelFilter bevel;
    bevel.highlight = {255, 255, 255, 255};
    bevel.shadow = {0, 0, 0, 255};
    bevel.blurX = bevel.blurY = 12;
    bevel.distance = 4;
    bevel.strength = 1;
    swf::GradientFilter gradient;
    gradient.stops = {{0, {255, 255, 255, 0}}, {255, {0, 0, 0, 255}}};
    gradient.blurX = gradient.blurY = 8;
    gradient.distance = 20;
    gradient.strength = 1;
    gradient.passes = 2;
    shadow.inner = glow.inner = bevel.inner = gradient.inner = true;
    // A square that fills its surface looks as it does with room all around.
    for (const swf::Filter& filter :
         {swf::Filter{shadow}, swf::Filter{glow}, swf::Filter{bevel}, swf::Filter{gradient}}) {
        SCOPED_TRACE(filter.index());
        constexpr int kSide = 24, kRoom = 40;
        Surface tight = square(kSide, 0, kSide, kRed);
        Surface roomy = square(kSide + 2 * kRoom, kRoom, kRoom + kSide, kRed);
        applyFilter(filter, tight.view());
        applyFilter(filter, roomy.view());
        for (int y = 0; y < kSide; ++y)
            for (int x = 0; x < kSide; ++x)
                ASSERT_EQ(tight.pixel(x, y), roomy.pixel(x + kRoom, y + kRoom)) << x << "," << y;
    }
}

} // namespace
} // namespace flash::render
