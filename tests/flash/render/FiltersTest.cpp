#include "flash/render/Filters.h"

#include "Shapes.h"
#include "flash/render/Pixel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace flash::render
{
namespace
{

using namespace test;

Surface dots(int width, int height)
{
    Surface surface(width, height);
    surface.row(height / 2)[width / 2] = kWhite;
    surface.row(height / 3)[width / 3] = 0x80402000;
    surface.row(0)[0] = kRed;
    return surface;
}

// The mean over a box, pixel by pixel, in floating point.
std::vector<double> naiveBlur(const Surface& source, double extentX, double extentY, int shift)
{
    const auto weight = [](double extent, int distance) {
        return std::clamp((extent - 1) / 2 - (std::abs(distance) - 1), 0.0, 1.0);
    };
    std::vector<double> result;
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x) {
            double sum = 0;
            for (int v = 0; v < source.height(); ++v)
                for (int u = 0; u < source.width(); ++u)
                    sum += weight(extentX, u - x) * weight(extentY, v - y) *
                           (source.pixel(u, v) >> shift & 0xFF);
            result.push_back(sum / extentX / extentY);
        }
    return result;
}

TEST(Filters, BlurIsTheMeanOfABoxOfAnyExtent)
{
    struct Case {
        double x, y;
    };
    for (const Case c : {Case{3, 5}, Case{4, 4}, Case{2.5, 1}, Case{1, 6.25}, Case{20, 20}}) {
        Surface surface = dots(17, 15);
        std::vector<double> expected[4];
        for (int channel = 0; channel < 4; ++channel)
            expected[channel] = naiveBlur(surface, c.x, c.y, 8 * channel);
        applyFilter(swf::BlurFilter{c.x, c.y, 1}, surface.view());
        for (int y = 0; y < 15; ++y)
            for (int x = 0; x < 17; ++x)
                for (int channel = 0; channel < 4; ++channel)
                    // Each of both directions cuts what it makes.
                    ASSERT_NEAR((surface.pixel(x, y) >> (8 * channel) & 0xFF) + 1.0,
                                expected[channel][static_cast<std::size_t>(y * 17 + x)], 1.3)
                        << c.x << "x" << c.y << " at " << x << "," << y;
    }
}

TEST(Filters, BlurTakesExtentsMoreRoughlyTheLargerTheyAre)
{
    const auto edge = [](double extent) {
        Surface surface(40, 1);
        std::fill(surface.row(0) + 20, surface.row(0) + 40, kWhite);
        applyFilter(swf::BlurFilter{extent, 1, 1}, surface.view());
        return std::vector<std::uint32_t>(surface.row(0), surface.row(0) + 40);
    };
    EXPECT_EQ(edge(9.2), edge(9));
    EXPECT_EQ(edge(9.4), edge(9.25));
    EXPECT_NE(edge(9.25), edge(9));
    EXPECT_EQ(edge(5.1), edge(5));
    EXPECT_EQ(edge(5.2), edge(5.125));
    EXPECT_NE(edge(5.2), edge(5));
    EXPECT_NE(edge(3.1), edge(3));
    EXPECT_EQ(edge(101), edge(101.9));
    EXPECT_NE(edge(101), edge(103));
}

TEST(Filters, BlurOfManyPassesStaysWithinItsGrowth)
{
    for (const int passes : {1, 3})
        for (const double extent : {2.0, 4.5, 9.0}) {
            const swf::Filter filter = swf::BlurFilter{extent, extent, passes};
            const Growth growth = filterGrowth(filter);
            const int middle = growth.left + 5;
            Surface surface(2 * middle + 1, 2 * middle + 1);
            // No single pixel: what is cut of each mean would leave nothing of it.
            for (int y = 0; y < surface.height(); ++y)
                std::fill(surface.row(y) + middle, surface.row(y) + surface.width(), kWhite);
            applyFilter(filter, surface.view());
            EXPECT_NE(surface.pixel(middle, middle), 0U);
            for (int i = 0; i < surface.width(); ++i)
                EXPECT_EQ(surface.pixel(4, i), 0U) << extent << " x" << passes;
        }
}

TEST(Filters, ColourMatrixActsOnPlainColours)
{
    swf::ColorMatrixFilter filter;
    filter.matrix = {0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1, 0, 40, 0, 0, 0, 0.5, 0};
    Surface surface(1, 1);
    surface.row(0)[0] = premultiply({200, 100, 50, 128});
    applyFilter(filter, surface.view());
    const swf::Rgba c = unpremultiply(surface.pixel(0, 0));
    EXPECT_NEAR(c.r, 100, 3);
    EXPECT_NEAR(c.g, 200, 3);
    EXPECT_NEAR(c.b, 90, 3);
    EXPECT_EQ(c.a, 64);
}

TEST(Filters, ConvolutionWeighsNeighboursInReadingOrder)
{
    swf::ConvolutionFilter filter;
    filter.columns = filter.rows = 3;
    filter.matrix = {0, 0, 0, 1, 0, 0, 0, 0, 0}; // takes the left neighbour
    Surface surface(3, 1);
    surface.row(0)[0] = kRed;
    surface.row(0)[1] = kGreen;
    surface.row(0)[2] = kBlue;
    applyFilter(filter, surface.view());
    EXPECT_EQ(surface.pixel(0, 0), kRed);
    EXPECT_EQ(surface.pixel(1, 0), kRed);
    EXPECT_EQ(surface.pixel(2, 0), kGreen);
}

TEST(Filters, SurviveNumbersThatMakeNoSense)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double v : {kNan, kInfinity, -kInfinity, -5.0, 1e30}) {
        swf::DropShadowFilter shadow;
        shadow.blurX = shadow.blurY = shadow.angle = shadow.distance = shadow.strength = v;
        swf::BevelFilter bevel;
        bevel.blurX = bevel.blurY = bevel.angle = bevel.distance = bevel.strength = v;
        swf::GradientFilter gradient;
        gradient.distance = gradient.strength = v;
        swf::ConvolutionFilter convolution;
        convolution.columns = convolution.rows = 5;
        convolution.matrix = {v};
        convolution.divisor = v;
        swf::ColorMatrixFilter matrix;
        matrix.matrix.fill(v);
        for (const swf::Filter& filter :
             {swf::Filter{swf::BlurFilter{v, v, 15}}, swf::Filter{shadow}, swf::Filter{bevel},
              swf::Filter{gradient}, swf::Filter{convolution}, swf::Filter{matrix}}) {
            Surface surface = dots(9, 9);
            applyFilter(filter, surface.view());
            const Growth growth = filterGrowth(filter);
            EXPECT_GE(growth.left, 0);
        }
    }
}

TEST(Layers, FiltersLookTheSameWhenOnlyAPartIsDrawnAgain)
{
    swf::DropShadowFilter shadow;
    shadow.color = {0, 0, 128, 200};
    shadow.blurX = shadow.blurY = 6;
    shadow.distance = 5;
    shadow.angle = 0.8;
    shadow.strength = 1;
    shadow.passes = 2;
    const std::vector<swf::Filter> filters{shadow, swf::BlurFilter{3, 3, 1}};
    const auto shape = rectShape(10.3, 9.6, 30, 28.5, solid(255, 0, 0));
    const auto draw = [&](Canvas& canvas) {
        canvas.clear({255, 255, 255, 255});
        canvas.beginLayer(deviceBounds(*shape, kStage), filters);
        canvas.drawShape(shape, kStage);
        canvas.endLayer(swf::BlendMode::Layer, {}, filters);
    };
    Picture whole(60, 60), parts(60, 60, {0, 0, 0, 255});
    draw(whole.canvas);
    for (const IntRect clip : {IntRect{0, 0, 33, 31}, IntRect{33, 0, 60, 31}, IntRect{0, 31, 60, 60}}) {
        parts.canvas.setClip(clip);
        draw(parts.canvas);
    }
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x) ASSERT_EQ(whole.at(x, y), parts.at(x, y)) << x << "," << y;
    EXPECT_NE(whole.at(34, 33), kWhite);
}

TEST(Filters, OnePixelOfBlurIsNoneAtAnyScale)
{
    EXPECT_EQ(filterGrowth(swf::Filter{swf::BlurFilter{1, 1, 1}}, 2), Growth{});
    // Three pixels wide, one to either side.
    EXPECT_EQ(filterGrowth(swf::Filter{swf::BlurFilter{2, 2, 1}}, 2), (Growth{1, 1, 1, 1}));
    EXPECT_EQ(filterGrowth(swf::Filter{swf::BlurFilter{3, 1, 1}}, 1), (Growth{1, 0, 1, 0}));
}

TEST(Filters, WhatIsMovedHasRoomForItsBlur)
{
    swf::DropShadowFilter shadow;
    shadow.color = {0, 0, 0, 255};
    shadow.blurX = shadow.blurY = 5;
    shadow.distance = 15;
    shadow.strength = 1;
    shadow.passes = 1;
    const Growth growth = filterGrowth(swf::Filter{shadow});
    EXPECT_EQ(growth, (Growth{2, 2, 17, 2}));
    // A shadow begins two pixels before what throws it, however far it is moved.
    Surface surface(40, 20);
    for (int y = growth.top; y < 20 - growth.bottom; ++y)
        std::fill(surface.row(y) + growth.left, surface.row(y) + 40 - growth.right, kRed);
    applyFilter(shadow, surface.view());
    EXPECT_EQ(alphaOf(surface.pixel(34, 0)), 51U);
    EXPECT_EQ(alphaOf(surface.pixel(39, 10)), 51U);
}

using Displacement = swf::DisplacementMapFilter;

// Four pixels in a row: white, red, green, blue; the map asks for the pixel `away` further on.
std::vector<std::uint32_t> displacedRow(Displacement filter, int away)
{
    constexpr std::uint32_t kBlue = 0xFF0000FF;
    Surface row(4, 1);
    for (int x = 0; x < 4; ++x)
        row.row(0)[x] = std::array{kWhite, kRed, kGreen, kBlue}[static_cast<std::size_t>(x)];
    auto map = std::make_shared<swf::Bitmap>(swf::Bitmap{4, 1, false, {}});
    map->pixels.assign(4, packPixel(255, static_cast<std::uint32_t>(128 + away), 0, 0));
    filter.map = map;
    filter.componentX = 1;
    filter.scaleX = 256;
    applyFilter(filter, row.view());
    return {row.row(0), row.row(0) + 4};
}

TEST(Filters, DisplacementTreatsPlacesOutsideAsItsModeSays)
{
    constexpr std::uint32_t kBlue = 0xFF0000FF, kGray = 0xFF808080;
    const auto in = [](Displacement::Mode mode) {
        Displacement filter;
        filter.mode = mode;
        filter.color = {128, 128, 128, 255};
        return filter;
    };
    using Row = std::vector<std::uint32_t>;
    EXPECT_EQ(displacedRow(in(Displacement::Mode::Wrap), 1), (Row{kRed, kGreen, kBlue, kWhite}));
    EXPECT_EQ(displacedRow(in(Displacement::Mode::Clamp), 2), (Row{kGreen, kBlue, kBlue, kBlue}));
    EXPECT_EQ(displacedRow(in(Displacement::Mode::Ignore), -1), (Row{kWhite, kWhite, kRed, kGreen}));
    EXPECT_EQ(displacedRow(in(Displacement::Mode::Color), -2), (Row{kGray, kGray, kWhite, kRed}));
    Displacement beside = in(Displacement::Mode::Wrap);
    beside.mapX = 2;
    EXPECT_EQ(displacedRow(beside, 1), (Row{kWhite, kRed, kBlue, kWhite})) << "where the map does not lie";
    Displacement none = in(Displacement::Mode::Wrap);
    none.componentY = 3; // two channels at once are none
    none.scaleY = 1000;
    EXPECT_EQ(displacedRow(none, 0), (Row{kWhite, kRed, kGreen, kBlue}));
}

TEST(Filters, DisplacementSurvivesNumbersThatMakeNoSense)
{
    for (const double scale : {1e300, -1e300, std::numeric_limits<double>::infinity(), std::nan("")}) {
        for (const auto mode :
             {Displacement::Mode::Wrap, Displacement::Mode::Clamp, Displacement::Mode::Ignore}) {
            Displacement filter;
            filter.mode = mode;
            filter.mapX = -2147483647;
            displacedRow(filter, 1);
            filter.mapX = 0;
            filter.componentY = 1;
            filter.scaleY = scale;
            displacedRow(filter, 1);
        }
    }
    Surface surface(3, 3);
    Displacement empty;
    empty.map = std::make_shared<swf::Bitmap>(swf::Bitmap{4, 4, false, {}}); // fewer pixels than it states
    applyFilter(empty, surface.view());
}

// What is before it in the chain lets the picture grow, and the map begins with what that has made.
TEST(Filters, DisplacementSeesTheResultOfThoseBefore)
{
    Displacement shift;
    shift.map = std::make_shared<swf::Bitmap>(swf::Bitmap{64, 64, true, {}});
    shift.map->pixels.assign(64 * 64, 0xFF818181);
    shift.componentX = 1;
    shift.scaleX = 256;
    shift.mode = Displacement::Mode::Clamp;
    const std::vector<swf::Filter> chain{swf::BlurFilter{5, 5, 1}, shift}, blur{swf::BlurFilter{5, 5, 1}};
    const Growth growth = filterGrowth(chain);
    EXPECT_EQ(growth, filterGrowth(blur));
    const auto draw = [&](const std::vector<swf::Filter>& filters) {
        Surface surface(21, 21);
        for (int y = 5; y < 16; ++y) std::fill_n(surface.row(y) + 5, 11, kRed);
        applyFilters(filters, surface.view());
        return surface;
    };
    const Surface moved = draw(chain), still = draw(blur);
    for (int x = 0; x < 20; ++x) ASSERT_EQ(moved.pixel(x, 10), still.pixel(x + 1, 10)) << x;
}

} // namespace
} // namespace flash::render
