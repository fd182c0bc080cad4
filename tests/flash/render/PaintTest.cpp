#include "flash/render/Paint.h"
#include "Shapes.h"
#include "flash/render/Pixel.h"

#include <gtest/gtest.h>

#include <cmath>

namespace flash::render
{
namespace
{

using namespace test;
using swf::FillStyle;
using swf::Gradient;

std::shared_ptr<const swf::Bitmap> bitmap(int width, int height, std::vector<std::uint32_t> pixels,
                                          bool opaque = true)
{
    auto result = std::make_shared<swf::Bitmap>();
    result->width = width;
    result->height = height;
    result->opaque = opaque;
    result->pixels = std::move(pixels);
    return result;
}

FillStyle bitmapFill(std::shared_ptr<const swf::Bitmap> source, bool repeat, bool smooth, double x, double y)
{
    FillStyle fill;
    fill.kind = FillStyle::Kind::Bitmap;
    fill.bitmap = std::move(source);
    fill.repeat = repeat;
    fill.smooth = smooth;
    fill.matrix = {20, 0, 0, 20, 20 * x, 20 * y};
    return fill;
}

const auto kFour = bitmap(2, 2, {kRed, kGreen, kBlue, kBlack});

TEST(BitmapFills, AreCopiedExactlyAtTheirOwnSize)
{
    for (const bool smooth : {false, true}) {
        Picture picture(8, 6);
        picture.canvas.drawShape(rectShape(3, 1, 8, 4, bitmapFill(kFour, true, smooth, 3, 1)), kStage);
        for (int y = 1; y < 4; ++y)
            for (int x = 3; x < 8; ++x)
                EXPECT_EQ(picture.at(x, y),
                          kFour->pixels[static_cast<std::size_t>((y - 1) % 2 * 2 + (x - 3) % 2)]);
        EXPECT_EQ(picture.at(2, 1), kWhite);
    }
}

TEST(BitmapFills, ClippedOnesGoOnWithTheirEdge)
{
    Picture picture(8, 8);
    picture.canvas.drawShape(rectShape(0, 0, 8, 8, bitmapFill(kFour, false, true, 3, 3)), kStage);
    EXPECT_EQ(picture.at(0, 0), kRed);
    EXPECT_EQ(picture.at(3, 3), kRed);
    EXPECT_EQ(picture.at(7, 0), kGreen);
    EXPECT_EQ(picture.at(0, 7), kBlue);
    EXPECT_EQ(picture.at(7, 7), kBlack);
}

TEST(BitmapFills, TileInAllDirectionsUnderAnyMatrix)
{
    // Turned by a quarter: the bitmap's x axis points down.
    FillStyle fill = bitmapFill(kFour, true, false, 0, 0);
    fill.matrix = {0, 20, -20, 0, 80, -60};
    Picture picture(8, 8);
    picture.canvas.drawShape(rectShape(0, 0, 8, 8, fill), kStage);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            const int u = (y + 3) % 2, v = (((4 - 1 - x) % 2) + 2) % 2;
            ASSERT_EQ(picture.at(x, y), kFour->pixels[static_cast<std::size_t>(v * 2 + u)]) << x << "," << y;
        }
}

TEST(BitmapFills, AreInterpolatedOnlyWhenSmooth)
{
    const auto pair = bitmap(2, 1, {kBlack, kWhite});
    const auto middleOf = [&](bool smooth, Quality quality) {
        FillStyle fill = bitmapFill(pair, false, smooth, 0, 0);
        fill.matrix = {80, 0, 0, 80, 0, 0};
        Picture picture(8, 4, {255, 0, 0, 255}, quality);
        picture.canvas.drawShape(rectShape(0, 0, 8, 4, fill), kStage);
        EXPECT_EQ(picture.at(0, 0), kBlack);
        EXPECT_EQ(picture.at(7, 3), kWhite);
        return picture.at(3, 1) & 0xFF;
    };
    EXPECT_EQ(middleOf(false, Quality::High), 0U);
    EXPECT_NEAR(middleOf(true, Quality::High), 255 * 0.375, 1.5);
    EXPECT_NEAR(middleOf(true, Quality::Low), 255 * 0.375, 1.5);
    EXPECT_EQ(middleOf(false, Quality::Low), 0U);
    EXPECT_NEAR(middleOf(false, Quality::Best), 255 * 0.375, 1.5);
}

TEST(BitmapFills, TakeColourTransformsAndMissingBitmaps)
{
    swf::ColorTransform inverse{-256, -256, -256, 256, 255, 255, 255, 0};
    Picture picture(4, 1);
    picture.canvas.drawShape(rectShape(0, 0, 2, 1, bitmapFill(kFour, true, true, 0, 0)), kStage, inverse);
    EXPECT_EQ(picture.at(0, 0), 0xFF00FFFF);
    picture.canvas.drawShape(rectShape(2, 0, 4, 1, bitmapFill(nullptr, true, true, 0, 0)), kStage);
    EXPECT_EQ(picture.at(2, 0), kWhite);
}

TEST(Bitmaps, AreDrawnWhereTheirMatrixPutsThem)
{
    Picture picture(8, 8);
    picture.canvas.drawBitmap(*kFour, {1, 0, 0, 1, 5, 2});
    EXPECT_EQ(picture.at(5, 2), kRed);
    EXPECT_EQ(picture.at(6, 3), kBlack);
    EXPECT_EQ(picture.at(7, 2), kWhite);
    picture.canvas.drawBitmap(*kFour, {-2, 0, 0, 2, 4, 4});
    EXPECT_EQ(picture.at(0, 4), kGreen);
    EXPECT_EQ(picture.at(3, 7), kBlue);
    swf::ColorTransform half;
    half.alphaMul = 128;
    picture.canvas.drawBitmap(*bitmap(1, 1, {0xFF000000}), {1, 0, 0, 1, 0, 0}, half);
    EXPECT_EQ(picture.at(0, 0), 0xFF7F7F7F);
}

FillStyle gradientFill(FillStyle::Kind kind, Gradient::Spread spread = Gradient::Spread::Pad)
{
    FillStyle fill;
    fill.kind = kind;
    fill.gradient.spread = spread;
    fill.gradient.stops = {{0, {0, 0, 0, 255}}, {255, {255, 255, 255, 255}}};
    // The gradient square is 256 pixels wide around (128, 128): one ramp entry to the pixel.
    fill.matrix = {256.0 * 20 / 32768, 0, 0, 256.0 * 20 / 32768, 128 * 20, 128 * 20};
    return fill;
}

TEST(Gradients, LinearOnesFollowTheRampAndSpread)
{
    struct Case {
        const char* name;
        Gradient::Spread spread;
        unsigned before, after; // at 10 pixels beyond either end
    };
    constexpr Case kCases[] = {{"pad", Gradient::Spread::Pad, 0, 255},
                               {"reflect", Gradient::Spread::Reflect, 9, 245},
                               {"repeat", Gradient::Spread::Repeat, 246, 10}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        Picture picture(300, 1);
        const auto shape = rectShape(-20, 0, 280, 1, gradientFill(FillStyle::Kind::LinearGradient, c.spread));
        picture.canvas.drawShape(shape, twipsToPixels({1, 0, 0, 1, 400, 0}));
        EXPECT_NEAR(picture.at(20, 0) & 0xFF, 0, 1);
        EXPECT_NEAR(picture.at(20 + 100, 0) & 0xFF, 100, 1);
        EXPECT_NEAR(picture.at(20 + 255, 0) & 0xFF, 255, 1);
        EXPECT_NEAR(picture.at(20 - 10, 0) & 0xFF, c.before, 1);
        EXPECT_NEAR(picture.at(20 + 266, 0) & 0xFF, c.after, 1);
    }
}

TEST(Gradients, RadialAndFocalOnesGrowFromTheirCentre)
{
    Picture radial(256, 256);
    radial.canvas.drawShape(rectShape(0, 0, 256, 256, gradientFill(FillStyle::Kind::RadialGradient)), kStage);
    EXPECT_NEAR(radial.at(128, 128) & 0xFF, 1, 1);
    EXPECT_NEAR(radial.at(128 + 64, 128) & 0xFF, 129, 1);
    EXPECT_NEAR(radial.at(128, 128 - 64) & 0xFF, 127, 1);
    EXPECT_EQ(radial.at(0, 0) & 0xFF, 255U);

    FillStyle fill = gradientFill(FillStyle::Kind::FocalGradient);
    fill.gradient.focalPoint = 0.5;
    Picture focal(256, 256);
    focal.canvas.drawShape(rectShape(0, 0, 256, 256, fill), kStage);
    EXPECT_NEAR(focal.at(128 + 64, 128) & 0xFF, 1, 2);
    // Halfway from the focal point to the circle in every direction.
    EXPECT_NEAR(focal.at(128 + 96, 128) & 0xFF, 129, 2);
    EXPECT_NEAR(focal.at(128 - 32, 128) & 0xFF, 127, 2);
}

TEST(Gradients, MixInLinearLightWhenAskedTo)
{
    FillStyle fill = gradientFill(FillStyle::Kind::LinearGradient);
    fill.gradient.interpolation = Gradient::Interpolation::Linear;
    Picture picture(256, 1);
    picture.canvas.drawShape(rectShape(0, 0, 256, 1, fill), kStage);
    EXPECT_NEAR(picture.at(128, 0) & 0xFF, 188, 1);
}

TEST(Gradients, AreLookedAtInTheCornersOfPixelsWhereEdgesAreSmoothed)
{
    const FillStyle fill = gradientFill(FillStyle::Kind::LinearGradient);
    // An entry of the ramp to eight pixels' width of the gradient: the corner of pixel 4 lies on entry 4.
    const auto at = [&](Quality quality) {
        Picture picture(256, 1, {0, 0, 0, 255}, quality);
        picture.canvas.drawShape(rectShape(0, 0, 256, 1, fill), kStage * swf::Matrix{0.125, 0, 0, 1, 0, 0});
        return static_cast<int>(picture.at(16, 0) & 0xFF);
    };
    EXPECT_EQ(at(Quality::High), 128);
    EXPECT_EQ(at(Quality::Low), 132);
}

TEST(Gradients, StraightDownLookLikeThoseThatLeanByAHair)
{
    // The one is painted a row at a time, the other pixel by pixel: through edges, veils and shared borders.
    const auto drawn = [](double lean, std::uint8_t alpha) {
        FillStyle fill = gradientFill(FillStyle::Kind::LinearGradient, Gradient::Spread::Reflect);
        for (auto& stop : fill.gradient.stops) stop.color.a = alpha;
        const double size = 60.0 * 20 / 32768;
        fill.matrix = {size * lean, size, -size, size * lean, 50 * 20, 50 * 20};
        Picture picture(100, 100, {90, 160, 30, 255});
        const swf::Matrix turned{0.8, 0.6, -0.6, 0.8, 50, -20};
        picture.canvas.drawShape(rectShape(5.3, 7.1, 90.6, 93.2, fill), kStage);
        fill.matrix = {-size * 0.6 + size * lean, size * 0.8, -size * 0.8,
                       -size * 0.6 + size * lean, 900,        900};
        picture.canvas.drawShape(rectShape(20, 10, 80, 60, fill), twipsToPixels(turned));
        std::vector<std::uint32_t> pixels;
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x) pixels.push_back(picture.at(x, y));
        return pixels;
    };
    for (const std::uint8_t alpha : {255, 130}) EXPECT_EQ(drawn(0, alpha), drawn(1e-9, alpha)) << +alpha;
}

TEST(Gradients, TakeStopsThatAreMissingOrOutOfOrder)
{
    FillStyle fill = gradientFill(FillStyle::Kind::LinearGradient);
    fill.gradient.stops = {{127, {255, 0, 0, 255}}, {0, {0, 255, 0, 255}}};
    Picture picture(256, 1);
    picture.canvas.drawShape(rectShape(0, 0, 256, 1, fill), kStage);
    EXPECT_EQ(picture.at(0, 0), kRed);
    // One entry of the ramp belongs to the stop that comes too late, and still shows the one before it.
    EXPECT_EQ(picture.at(128, 0), kRed);
    EXPECT_EQ(picture.at(129, 0), kGreen);
    EXPECT_EQ(picture.at(255, 0), kGreen);
    fill.gradient.stops.clear();
    picture.canvas.drawShape(rectShape(0, 0, 256, 1, fill), kStage);
    EXPECT_EQ(picture.at(100, 0), kBlack);
}

TEST(Gradients, MeetOtherFillsWithoutSeam)
{
    FillStyle white = gradientFill(FillStyle::Kind::RadialGradient);
    white.gradient.stops = {{0, {255, 255, 255, 255}}};
    swf::ShapeLayer layer;
    layer.fills = {white, bitmapFill(bitmap(1, 1, {kWhite}), true, true, 0, 0)};
    layer.runs = {run({{3.3, 0}, {0, 0}, {0, 20}, {16.7, 20}}, 1, 0), run({{3.3, 0}, {16.7, 20}}, 2, 1),
                  run({{3.3, 0}, {20, 0}, {20, 20}, {16.7, 20}}, 0, 2)};
    Picture picture(20, 20, {0, 0, 0, 255});
    picture.canvas.drawShape(shapeOf(layer), kStage);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x) ASSERT_EQ(picture.at(x, y), kWhite) << x << "," << y;
}

TEST(Gradients, TakeEachColourTransformThoughTheirRampIsKept)
{
    const auto shape =
        rectShape(0, 0, 40, 1, gradientFill(FillStyle::Kind::LinearGradient, Gradient::Spread::Pad));
    swf::ColorTransform blackened;
    blackened.redMul = blackened.greenMul = blackened.blueMul = 0;
    for (const bool isBlack : {false, true, false, true}) {
        Picture picture(40, 1);
        picture.canvas.drawShape(shape, kStage, isBlack ? blackened : swf::ColorTransform{});
        EXPECT_EQ(picture.at(30, 0), isBlack ? kBlack : 0xFF1E1E1EU);
    }
}

TEST(Gradients, LetThroughWhatTheirStopsDo)
{
    // Long evenly covered rows, which opaque ones are written to without looking at what is below.
    for (const std::uint8_t alpha : {std::uint8_t{255}, std::uint8_t{128}, std::uint8_t{0}}) {
        FillStyle fill = gradientFill(FillStyle::Kind::RadialGradient);
        fill.gradient.stops = {{0, {0, 0, 255, 255}}, {255, {0, 0, 255, alpha}}};
        fill.matrix.ty = 20;
        Picture picture(256, 3, {255, 0, 0, 255});
        picture.canvas.drawShape(rectShape(0, 1, 256, 2, fill), kStage);
        EXPECT_EQ(picture.at(0, 0), kRed);
        EXPECT_EQ(picture.at(128, 1), kBlue);
        EXPECT_NEAR(picture.at(0, 1) & 0xFF, alpha, 2);
        EXPECT_NEAR(picture.at(0, 1) >> 16 & 0xFF, 255 - alpha, 2);
    }
}

TEST(Gradients, WriteAsManyPixelsAsAreWanted)
{
    const FillStyle::Kind kKinds[] = {FillStyle::Kind::LinearGradient, FillStyle::Kind::RadialGradient,
                                      FillStyle::Kind::FocalGradient};
    for (const FillStyle::Kind kind : kKinds) {
        Gradient gradient;
        gradient.stops = {{0, {255, 0, 0, 255}}, {255, {0, 0, 255, 255}}};
        gradient.focalPoint = 0.5;
        const auto paint =
            makeGradientPaint(kind, gradient, std::make_shared<const GradientRamp>(makeRamp(gradient, {})),
                              {0.005, 0, 0, 0.005, 50, 0});
        std::vector<std::uint32_t> all(600);
        paint->fetch(0, 0, all.size(), all.data());
        for (const unsigned count : {1U, 7U, 8U, 9U, 255U, 256U, 257U, 513U}) {
            std::vector<std::uint32_t> some(count + 1, 7);
            paint->fetch(0, 0, count, some.data());
            EXPECT_EQ(some.back(), 7U) << count;
            some.pop_back();
            EXPECT_TRUE(std::equal(some.begin(), some.end(), all.begin())) << count;
        }
    }
}

TEST(Gradients, SurviveMatricesWithoutInverse)
{
    for (const auto kind : {FillStyle::Kind::LinearGradient, FillStyle::Kind::RadialGradient}) {
        FillStyle fill = gradientFill(kind);
        fill.matrix = {0, 0, 0, 0, 0, 0};
        Picture picture(4, 4);
        picture.canvas.drawShape(rectShape(0, 0, 4, 4, fill), kStage);
        fill.matrix = {1e-12, 0, 0, 1e-12, 0, 0};
        picture.canvas.drawShape(rectShape(0, 0, 4, 4, fill), kStage);
        EXPECT_EQ(picture.at(3, 3), kWhite);
    }
}

} // namespace
} // namespace flash::render
