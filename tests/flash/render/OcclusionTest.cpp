#include "Shapes.h"

#include "flash/render/Occlusion.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>

namespace flash::render::test
{
namespace
{

constexpr int kSide = 64;

/// What a shape leaves of a box that had one colour before.
std::vector<std::uint32_t> drawnOver(std::uint32_t ground, const std::shared_ptr<const swf::Shape>& shape,
                                     const swf::Matrix& m, const swf::ColorTransform& color,
                                     const IntRect& box, Quality quality)
{
    std::vector<std::uint32_t> pixels(std::size_t{kSide} * kSide, ground);
    RenderCache cache;
    Canvas canvas({pixels.data(), kSide, kSide, kSide}, quality, cache);
    canvas.setClip(box);
    canvas.drawShape(shape, m, color);
    std::vector<std::uint32_t> part;
    for (int y = box.top; y < box.bottom; ++y)
        for (int x = box.left; x < box.right; ++x)
            part.push_back(pixels[static_cast<std::size_t>(y * kSide + x)]);
    return part;
}

// Whatever is said to hide what lies below does so at every quality, however it is placed.
TEST(Occlusion, WhatHidesABoxLetsNothingThrough)
{
    std::mt19937 random(7);
    const auto upTo = [&](int most) { return static_cast<int>(random() % static_cast<unsigned>(most + 1)); };
    int hiding = 0;
    for (int i = 0; i < 4000; ++i) {
        SCOPED_TRACE(i);
        swf::ShapeLayer layer;
        for (int n = 0; n < 2; ++n) {
            layer.fills.push_back(solid(static_cast<std::uint8_t>(upTo(255)), 80, 20,
                                        static_cast<std::uint8_t>(upTo(5) == 0 ? 254 : 255)));
            const double left = -upTo(40), top = -upTo(40), right = 20 + upTo(60), bottom = 20 + upTo(60);
            swf::EdgeRun outline = rectRun(left, top, right, bottom, static_cast<std::uint16_t>(n + 1));
            if (upTo(2) == 0) outline.edges[1] = curveTo(right + upTo(40) - 20, 30, right, bottom);
            if (upTo(3) == 0) outline.edges.pop_back();
            if (n == 0 || upTo(2) == 0) layer.runs.push_back(outline);
        }
        layer.nonZeroWinding = upTo(1) == 0;
        const auto shape = shapeOf(layer);
        const double scale = (0.5 + upTo(20) / 10.0) / swf::kTwipsPerPixel;
        swf::Matrix m{scale, 0, 0, scale, upTo(40) / 8.0, upTo(40) / 8.0};
        if (upTo(2) == 0) m.b = scale * upTo(20) / 20;
        if (upTo(2) == 0) m.a = -m.a;
        swf::ColorTransform color;
        if (upTo(7) == 0) color.alphaMul = 255;
        const int x = upTo(kSide - 2), y = upTo(kSide - 2);
        const IntRect box{x, y, x + 1 + upTo(kSide - x - 1), y + 1 + upTo(kSide - y - 1)};
        if (!hidesBox(*shape, m, color, box)) continue;
        ++hiding;
        for (const Quality quality : {Quality::Low, Quality::Medium, Quality::High, Quality::Best})
            ASSERT_EQ(drawnOver(kWhite, shape, m, color, box, quality),
                      drawnOver(kBlue, shape, m, color, box, quality))
                << static_cast<int>(quality);
    }
    EXPECT_GT(hiding, 300) << "there is something to see in this";
}

TEST(Occlusion, GroundsOfTheBoxesOwnSizeHideIt)
{
    swf::ShapeLayer layer;
    layer.fills.push_back(solid(1, 2, 3));
    layer.runs.push_back(rectRun(0, 0, 55, 40, 1));
    const auto shape = shapeOf(layer);
    for (const double scale : {1.0, 1.1, 64.0 / 55}) {
        const double f = scale / swf::kTwipsPerPixel;
        const IntRect all{0, 0, static_cast<int>(55 * scale + 1e-9), static_cast<int>(40 * scale + 1e-9)};
        EXPECT_TRUE(hidesBox(*shape, {f, 0, 0, f, 0, 0}, {}, all)) << scale;
        EXPECT_FALSE(hidesBox(*shape, {f, 0, 0, f, 0.5, 0}, {}, all)) << scale;
    }
}

} // namespace
} // namespace flash::render::test
