#include "flash/render/HitTest.h"

#include "Shapes.h"

#include "flash/render/RenderCache.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flash::render
{
namespace
{

using namespace test;

TEST(HitTest, FindsFillsHolesAndStrokes)
{
    swf::LineStyle line;
    line.width = 80;
    swf::ShapeLayer layer{
        {solid(0, 0, 0, 0)},
        {line},
        {rectRun(0, 0, 20, 20, 1), rectRun(5, 5, 15, 15, 1), run({{30, 0}, {30, 20}}, 0, 0, 1)}};
    const auto shape = shapeOf(layer);
    const auto hit = [&](double x, double y) {
        return shapeContains(*shape, {x * swf::kTwipsPerPixel, y * swf::kTwipsPerPixel});
    };
    EXPECT_TRUE(hit(2, 2)) << "a transparent fill is there all the same";
    EXPECT_FALSE(hit(10, 10)) << "in the hole";
    EXPECT_FALSE(hit(25, 10));
    EXPECT_TRUE(hit(28.5, 10));
    EXPECT_TRUE(hit(31.5, 10));
    EXPECT_FALSE(hit(32.5, 10));
    EXPECT_FALSE(hit(0, 2)) << "on the left edge";
    EXPECT_FALSE(hit(2, 0)) << "on the upper edge";
    EXPECT_TRUE(hit(20, 2)) << "on the right edge";
    EXPECT_TRUE(hit(30, 21)) << "in the round cap";
    EXPECT_FALSE(hit(30, 23));
}

// An outline of many lines, whose answer is known everywhere.
TEST(HitTest, FollowsLongOutlines)
{
    constexpr int kTeeth = 40;
    swf::EdgeRun comb;
    comb.startX = comb.startY = 0;
    comb.fill1 = 1;
    for (int i = 0; i < kTeeth; ++i) {
        const int x = i * 40;
        comb.edges.insert(comb.edges.end(), {lineTo(x / 20.0 + 1, 0), lineTo(x / 20.0 + 1, 50 + i),
                                             lineTo(x / 20.0 + 2, 50 + i), lineTo(x / 20.0 + 2, 0)});
    }
    comb.edges.insert(comb.edges.end(), {lineTo(2 * kTeeth, -10), lineTo(0, -10), lineTo(0, 0)});
    const auto shape = shapeOf({{solid(0, 0, 0)}, {}, {comb}});
    for (double y = -12.5; y < 95; y += 2.5) {
        for (int x = 0; x < 2 * kTeeth; ++x) {
            const bool isTooth = x % 2 == 1 && y > 0 && y <= 50 + x / 2;
            const bool isBack = y > -10 && y <= 0;
            EXPECT_EQ(shapeContains(*shape, {(x + 0.5) * swf::kTwipsPerPixel, y * swf::kTwipsPerPixel}),
                      isTooth || isBack)
                << x << "," << y;
        }
    }
}

TEST(HitTest, KeepsLinesAsLongAsTheShapeLives)
{
    RenderCache cache;
    const auto at = [](double x, double y) {
        return swf::Point{x * swf::kTwipsPerPixel, y * swf::kTwipsPerPixel};
    };
    // A shape that comes to lie where another one has been is not taken for it.
    for (int width = 10; width < 60; ++width) {
        const auto shape = rectShape(0, 0, width, 20, solid(0, 0, 0));
        const std::size_t before = cache.usedBytes();
        EXPECT_TRUE(shapeContains(shape, at(width - 1, 10), cache));
        const std::size_t kept = cache.usedBytes();
        EXPECT_FALSE(shapeContains(shape, at(width + 1, 10), cache));
        EXPECT_FALSE(shapeContains(shape, at(std::nan(""), 10), cache));
        EXPECT_EQ(cache.usedBytes(), kept) << "nothing is flattened twice";
        EXPECT_GT(kept, width == 10 ? before : 0U);
    }
}

TEST(HitTest, FollowsCurvesAndSharedEdges)
{
    // A circle-like outline divided down the middle between two fills.
    swf::ShapeLayer layer;
    layer.fills = {solid(255, 0, 0), solid(0, 255, 0)};
    swf::EdgeRun left, right;
    left.startX = right.startX = twips(10);
    left.fill1 = 1;
    left.edges = {curveTo(-5, 10, 10, 20)};
    right.fill0 = 2;
    right.edges = {curveTo(25, 10, 10, 20)};
    layer.runs = {left, right, run({{10, 0}, {10, 20}}, 1, 2)};
    const auto shape = shapeOf(layer);
    const auto hit = [&](double x, double y) {
        return shapeContains(*shape, {x * swf::kTwipsPerPixel, y * swf::kTwipsPerPixel});
    };
    EXPECT_TRUE(hit(4, 10));
    EXPECT_TRUE(hit(16, 10));
    EXPECT_TRUE(hit(10, 10));
    EXPECT_FALSE(hit(2, 10)) << "the control point is outside of the curve";
    EXPECT_FALSE(hit(4, 2));
}

} // namespace
} // namespace flash::render
