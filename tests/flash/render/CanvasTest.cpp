#include "Shapes.h"
#include "flash/render/Flatten.h"
#include "flash/render/Stroker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace flash::render
{
namespace
{

using namespace test;
using swf::BlendMode;

TEST(Canvas, FillsWholePixelsExactly)
{
    Picture picture(10, 8);
    picture.canvas.drawShape(rectShape(2, 1, 6, 5, solid(255, 0, 0)), kStage);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 10; ++x)
            EXPECT_EQ(picture.at(x, y), x >= 2 && x < 6 && y >= 1 && y < 5 ? kRed : kWhite) << x << "," << y;
}

TEST(Canvas, BlendsPartlyCoveredAndTransparentPixels)
{
    Picture picture(4, 4, {0, 0, 0, 255});
    picture.canvas.drawShape(rectShape(0, 0, 1.5, 1, solid(255, 255, 255)), kStage);
    picture.canvas.drawShape(rectShape(0, 2, 2, 3, solid(255, 255, 255, 128)), kStage);
    EXPECT_EQ(picture.at(0, 0), kWhite);
    EXPECT_EQ(picture.at(1, 0), 0xFF808080);
    EXPECT_EQ(picture.at(2, 0), kBlack);
    EXPECT_EQ(picture.at(1, 2), 0xFF808080);
}

TEST(Canvas, CountsSamplesOnAGridAsTheQualityAsks)
{
    // From (0, 0) down to the right: of a pixel on the diagonal, six samples of sixteen lie above the line,
    // or one of four, or half of it, or its centre.
    const swf::ShapeLayer triangle{{solid(0, 0, 0)}, {}, {run({{0, 0}, {4, 0}, {4, 4}, {0, 0}}, 0, 1)}};
    const auto darkness = [&](Quality quality) {
        Picture picture(4, 4, {255, 255, 255, 255}, quality);
        picture.canvas.drawShape(shapeOf(triangle), kStage);
        EXPECT_EQ(picture.at(2, 1), kBlack);
        EXPECT_EQ(picture.at(1, 2), kWhite);
        return 255 - static_cast<int>(picture.at(1, 1) & 0xFF);
    };
    EXPECT_NEAR(darkness(Quality::Best), 128, 1);
    EXPECT_NEAR(darkness(Quality::High), 255 * 10 / 16, 1);
    EXPECT_NEAR(darkness(Quality::Medium), 255 * 3 / 4, 1);
    EXPECT_EQ(darkness(Quality::Low), 255);
    // Corners go to the nearest quarter.
    for (const auto& [right, share] : {std::pair{2.3, 0.25}, {2.45, 0.5}, {2.1, 0.0}}) {
        Picture picture(4, 4);
        picture.canvas.drawShape(rectShape(0, 0, right, 4, solid(0, 0, 0)), kStage);
        EXPECT_NEAR(255 - static_cast<int>(picture.at(2, 1) & 0xFF), 255 * share, 1) << right;
    }
}

TEST(Canvas, DrawsLettersTheSameWhereverTheyComeAgain)
{
    const auto letter = shapeOf({{solid(0, 0, 0)}, {}, {run({{0, 0}, {5.3, 0}, {2.2, 7.7}, {0, 0}}, 0, 1)}});
    const auto placed = [&](double x, double y) {
        return GlyphPlacement{letter, kStage * swf::Matrix{1, 0, 0, 1, x * 20, y * 20}};
    };
    Picture picture(40, 30);
    const GlyphPlacement glyphs[] = {placed(2.3, 3.6), placed(20.3, 12.6), placed(37.3, 27.6)};
    picture.canvas.drawGlyphs(glyphs, {0, 0, 0, 255});
    picture.canvas.beginMask();
    picture.canvas.drawShape(rectShape(20, 0, 23, 10, solid(0, 0, 0)), kStage);
    picture.canvas.endMask();
    const GlyphPlacement masked = placed(20.3, 1.6);
    picture.canvas.drawGlyphs({&masked, 1}, {0, 0, 0, 255});
    picture.canvas.popMask();
    EXPECT_NE(picture.at(4, 5), kWhite);
    for (int y = 0; y < 9; ++y)
        for (int x = 0; x < 7; ++x) {
            const std::uint32_t first = picture.at(2 + x, 3 + y);
            EXPECT_EQ(picture.at(20 + x, 12 + y), first) << x << "," << y;
            if (x < 3 && y < 3) {
                EXPECT_EQ(picture.at(37 + x, 27 + y), first) << x << "," << y;
            }
            EXPECT_EQ(picture.at(20 + x, 1 + y), x < 3 ? first : kWhite) << x << "," << y;
        }
    // Not kept, because of its size, and yet the same picture of a larger one.
    Picture large(200, 200);
    const GlyphPlacement big{letter, {1, 0, 0, 1, 10, 10}};
    large.canvas.drawGlyphs({&big, 1}, {0, 0, 0, 255});
    EXPECT_EQ(large.at(40, 20), kBlack);
    EXPECT_EQ(large.at(150, 20), kWhite);
}

TEST(Canvas, RoundsWhatEachTermOfAMatrixAdds)
{
    // A square of 50 pixels turned by 45 degrees: its lowest corner lies at 70.71, twice 35.355, which each
    // are rounded down to 35.25.
    const double half = std::sqrt(0.5) / swf::kTwipsPerPixel;
    Picture picture(100, 80);
    picture.canvas.drawShape(rectShape(0, 0, 50, 50, solid(0, 0, 0)), {half, half, -half, half, 50, 0});
    EXPECT_NE(picture.at(50, 69), kWhite);
    EXPECT_NE(picture.at(49, 70), kWhite);
    Picture quarter(100, 80);
    quarter.canvas.drawShape(
        shapeOf({{solid(0, 0, 0)},
                 {},
                 {run({{0, 0}, {35.25, 35.25}, {0, 70.5}, {-35.25, 35.25}, {0, 0}}, 0, 1)}}),
        {1.0 / swf::kTwipsPerPixel, 0, 0, 1.0 / swf::kTwipsPerPixel, 50, 0});
    for (int y = 0; y < 80; ++y)
        for (int x = 0; x < 100; ++x) ASSERT_EQ(picture.at(x, y), quarter.at(x, y)) << x << "," << y;
}

TEST(Canvas, StrokesWithinARectangleOnce)
{
    Picture picture(12, 12);
    picture.canvas.strokeInside({1.5, 1.5}, {10.5, 10.5}, 3, {0, 0, 0, 128});
    const std::uint32_t grey = picture.at(3, 3);
    EXPECT_NEAR(grey & 0xFF, 127, 1);
    // Corners lie on two sides and are no darker.
    for (int i = 2; i < 10; ++i) EXPECT_EQ(picture.at(i, 2), picture.at(2, i));
    EXPECT_EQ(picture.at(9, 9), grey);
    EXPECT_EQ(picture.at(6, 6), kWhite);
    EXPECT_NEAR(picture.at(1, 6) & 0xFF, 191, 2);
    // Without room for an inside it is filled.
    Picture small(8, 8);
    small.canvas.strokeInside({1, 1}, {5, 7}, 3, {0, 0, 0, 255});
    for (int y = 1; y < 7; ++y) EXPECT_EQ(small.at(3, y), kBlack);
}

TEST(Canvas, AbuttingFillsShowNoSeam)
{
    // Two fills meet on a slanted line; on black, any gap would show as a darker pixel.
    swf::ShapeLayer layer;
    layer.fills = {solid(255, 255, 255), solid(255, 255, 255)};
    layer.runs = {run({{3.3, 0}, {0, 0}, {0, 20}, {16.7, 20}}, 1, 0), run({{3.3, 0}, {16.7, 20}}, 2, 1),
                  run({{3.3, 0}, {20, 0}, {20, 20}, {16.7, 20}}, 0, 2)};
    Picture picture(20, 20, {0, 0, 0, 255});
    picture.canvas.drawShape(shapeOf(layer), kStage);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x) ASSERT_EQ(picture.at(x, y), kWhite) << x << "," << y;
}

TEST(Canvas, OverlapOfOneFillIsAHoleUnlessWindingsCount)
{
    swf::ShapeLayer layer{{solid(0, 0, 255)}, {}, {rectRun(0, 0, 8, 8, 1), rectRun(2, 2, 6, 6, 1)}};
    Picture evenOdd(8, 8);
    evenOdd.canvas.drawShape(shapeOf(layer), kStage);
    EXPECT_EQ(evenOdd.at(1, 1), kBlue);
    EXPECT_EQ(evenOdd.at(4, 4), kWhite);

    swf::Shape shape = *shapeOf(layer);
    shape.layers[0].nonZeroWinding = true;
    Picture nonZero(8, 8);
    nonZero.canvas.drawShape(shape, kStage);
    EXPECT_EQ(nonZero.at(4, 4), kBlue);
}

TEST(Canvas, TransformsColours)
{
    Picture picture(3, 1);
    swf::ColorTransform half;
    half.alphaMul = 128;
    swf::ColorTransform blue;
    blue.redMul = 0;
    blue.blueAdd = 255;
    picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(0, 0, 0)), kStage, half);
    picture.canvas.drawShape(rectShape(1, 0, 2, 1, solid(255, 0, 0)), kStage, blue);
    EXPECT_EQ(picture.at(0, 0), 0xFF808080);
    EXPECT_EQ(picture.at(1, 0), kBlue);
}

TEST(Canvas, ChangesOnlyWhatTheClipHolds)
{
    Picture picture(6, 6);
    picture.canvas.setClip({2, 2, 4, 4});
    picture.canvas.drawShape(rectShape(-100, -100, 100, 100, solid(255, 0, 0)), kStage);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x)
            EXPECT_EQ(picture.at(x, y), x >= 2 && x < 4 && y >= 2 && y < 4 ? kRed : kWhite);
}

// Scripts scale by any number; corners too far to be told are taken for nearer ones, wherever the clip is.
TEST(Canvas, DrawsInPartsWhatIsLargerThanAnyNumber)
{
    const auto shape =
        shapeOf({{solid(255, 0, 0)}, {}, {run({{-82877, 0}, {135, -46}, {50'000, 17}, {-82877, 0}}, 0, 1)}});
    const double scale = 1073742 * 0.05, turn = 4.3622;
    const swf::Matrix m{
        scale * std::cos(turn), scale * std::sin(turn), -0.05 * std::sin(turn), 0.05 * std::cos(turn), 0, 0};
    Picture whole(200, 150), parts(200, 150);
    whole.canvas.drawShape(shape, m);
    for (const IntRect& part : {IntRect{0, 0, 200, 75}, IntRect{0, 75, 90, 150}, IntRect{90, 75, 200, 150}}) {
        parts.canvas.setClip(part);
        parts.canvas.drawShape(shape, m);
    }
    int different = 0;
    for (int y = 0; y < 150; ++y)
        for (int x = 0; x < 200; ++x) different += whole.at(x, y) == parts.at(x, y) ? 0 : 1;
    EXPECT_EQ(different, 0);
}

TEST(Canvas, DrawsNothingForUselessMatrices)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const auto shape = shapeOf({{solid(255, 0, 0)}, {swf::LineStyle{}}, {rectRun(0, 0, 4, 4, 1, 1)}});
    Picture picture(4, 4);
    for (const swf::Matrix& m :
         {swf::Matrix{kNan, 0, 0, 1, 0, 0}, swf::Matrix{1, 0, 0, 1, kInfinity, 0},
          swf::Matrix{1e300, 1e300, -1e300, 1e300, 0, 0}, swf::Matrix{1, 0, 0, 1, -1e14, 1e14}}) {
        picture.canvas.drawShape(shape, m);
        picture.canvas.fillRect(shape->bounds, m, {255, 0, 0, 255});
        picture.canvas.strokeRect(shape->bounds, m, {255, 0, 0, 255});
        EXPECT_EQ(picture.at(1, 1), kWhite);
        EXPECT_TRUE(deviceBounds(shape->bounds, m).isEmpty() || m.tx == -1e14);
    }
    // Enormous, but the surface lies in the middle of it.
    picture.canvas.drawShape(shape, {1e9, 0, 0, 1e9, -4e10, -4e10});
    EXPECT_EQ(picture.at(1, 1), kRed);
}

TEST(Canvas, MissingFillNumbersAndStylesDrawNothing)
{
    swf::ShapeLayer layer{{solid(255, 0, 0)}, {}, {rectRun(0, 0, 4, 4, 9, 9)}};
    Picture picture(4, 4);
    picture.canvas.drawShape(shapeOf(layer), kStage);
    EXPECT_EQ(picture.at(1, 1), kWhite);
}

TEST(Canvas, LowQualityPaintsPixelsWhoseCentreIsInside)
{
    // Edges run right through centres: those on the left and upper edge belong to the shape.
    Picture picture(4, 4, {255, 255, 255, 255}, Quality::Low);
    picture.canvas.drawShape(rectShape(0.5, 0.5, 2.5, 2.5, solid(255, 0, 0)), kStage);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x) EXPECT_EQ(picture.at(x, y), x < 2 && y < 2 ? kRed : kWhite);
}

TEST(Canvas, LowQualityFlattensShapesAndLettersOnceForTheirOwnSize)
{
    // An arch of one pixel's height, drawn eighty times as large: its chords are seen.
    swf::EdgeRun arch = run({{0, 2}, {0, 1}}, 0, 1);
    arch.edges.push_back(curveTo(1, 0, 2, 1));
    arch.edges.push_back(lineTo(2, 2));
    arch.edges.push_back(lineTo(0, 2));
    const auto shape = shapeOf({{solid(255, 0, 0)}, {}, {arch}});
    const auto heightAt = [&](Quality quality, double zoom, int x, bool isLetter = false) {
        Picture picture(160, 160, {255, 255, 255, 255}, quality);
        picture.canvas.setPixelScale(zoom);
        const GlyphPlacement letter{shape, twipsToPixels({80, 0, 0, 80, 0, 0})};
        if (isLetter)
            picture.canvas.drawGlyphs({&letter, 1}, {255, 0, 0, 255});
        else
            picture.canvas.drawShape(shape, letter.toDevice);
        int height = 0;
        while (height < 160 && picture.at(x, 159 - height) == kRed) ++height;
        return height;
    };
    // The curve is at 105 there, a chord between its ends and its middle eight pixels or more below.
    EXPECT_NEAR(heightAt(Quality::High, 1, 30), 104, 2);
    EXPECT_LT(heightAt(Quality::Low, 1, 30), 101);
    EXPECT_EQ(heightAt(Quality::Low, 1, 30, true), heightAt(Quality::Low, 1, 30));
    EXPECT_NEAR(heightAt(Quality::High, 1, 30, true), 104, 2);
    // A window that is larger shows more of it.
    EXPECT_NEAR(heightAt(Quality::Low, 80, 30), 104, 2);
}

TEST(Canvas, CurvesNearEnoughToOneLineAreOne)
{
    // From (0, 0) by a control point to (4430, -5620): how many points stand for it. It bulges by a quarter
    // of what the control point lies beyond the middle twice, across the line: 0.098 pixels for ten twips.
    const auto pointsFor = [](int controlX, int controlY) {
        swf::EdgeRun curve = run({{0, 0}}, 0, 1);
        curve.edges.push_back({true, controlX, controlY, 4430, -5620});
        return flatten(*shapeOf({{solid(0, 0, 0)}, {}, {curve}}), 0).layers[0].points.size();
    };
    EXPECT_EQ(pointsFor(2215, -2810), 2U);
    EXPECT_EQ(pointsFor(2220, -2810), 2U);
    EXPECT_EQ(pointsFor(2225, -2810), 3U);
    // On the line, but beyond its end: there and back is flat too, and one that turns back beside it is not.
    EXPECT_GT(pointsFor(4430 + 800, -5620 - 980), 2U);
}

TEST(Canvas, BoxesOfFieldsKeepTheirSizeOnWholePixels)
{
    Picture picture(12, 6);
    // From 0.5 to 2.5, and from 5.5 to 7.5: halves go to the even number.
    picture.canvas.fillBox({10, 50, 0, 40}, kStage, {255, 0, 0, 255});
    picture.canvas.fillBox({110, 150, 0, 40}, kStage, {255, 0, 0, 255});
    for (int x = 0; x < 12; ++x) {
        const bool inside = x < 2 || (x >= 6 && x < 8);
        EXPECT_EQ(picture.at(x, 0), inside ? kRed : kWhite) << x;
    }
}

TEST(Canvas, BordersOfFieldsAreOnePixelWideAndClosed)
{
    for (const double scale : {1.0, 2.0}) {
        Picture picture(10, 10);
        picture.canvas.setPixelScale(scale);
        picture.canvas.strokeRect({20, 60, 20, 60}, twipsToPixels({}, scale), {0, 0, 0, 255});
        const int first = static_cast<int>(scale), last = static_cast<int>(3 * scale);
        EXPECT_EQ(picture.at(first, first), kBlack);
        EXPECT_EQ(picture.at(last, first), kBlack);
        EXPECT_EQ(picture.at(first, last), kBlack);
        EXPECT_EQ(picture.at(last, last), kBlack);
        EXPECT_EQ(picture.at(last, last - 1), kBlack);
        EXPECT_EQ(picture.at(first + 1, first + 1), kWhite) << "one pixel wide at any scale";
        Picture open(10, 10);
        open.canvas.strokeRect({20, 60, 20, 60}, twipsToPixels({}, scale), {0, 0, 0, 255},
                               Canvas::LastCorner::Open);
        EXPECT_EQ(open.at(last, last), kWhite);
        EXPECT_EQ(open.at(last, last - 1), kBlack);
        EXPECT_EQ(open.at(last - 1, last), kBlack);
    }
}

// ---- strokes ----------------------------------------------------------------------------------------------

swf::LineStyle lineStyle(double width, swf::Rgba color = {0, 0, 0, 255})
{
    swf::LineStyle style;
    style.width = static_cast<std::uint16_t>(twips(width));
    style.color = color;
    return style;
}

TEST(Strokes, CoverTheirWidthAndEndAsTheirCapsSay)
{
    struct Case {
        const char* name;
        swf::LineStyle::Cap cap;
        bool beyondEnd, diagonalBeyondEnd;
    };
    constexpr Case kCases[] = {{"none", swf::LineStyle::Cap::None, false, false},
                               {"round", swf::LineStyle::Cap::Round, true, false},
                               {"square", swf::LineStyle::Cap::Square, true, true}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        swf::LineStyle style = lineStyle(8);
        style.startCap = style.endCap = c.cap;
        Picture picture(40, 20);
        picture.canvas.drawShape(shapeOf({{}, {style}, {run({{10, 10}, {30, 10}}, 0, 0, 1)}}), kStage);
        EXPECT_EQ(picture.at(20, 6), kBlack);
        EXPECT_EQ(picture.at(20, 13), kBlack);
        EXPECT_EQ(picture.at(20, 5), kWhite);
        EXPECT_EQ(picture.at(20, 14), kWhite);
        for (const int x : {7, 32}) EXPECT_EQ(picture.at(x, 10), c.beyondEnd ? kBlack : kWhite) << x;
        for (const int x : {6, 33}) EXPECT_EQ(picture.at(x, 6), c.diagonalBeyondEnd ? kBlack : kWhite) << x;
    }
}

TEST(Strokes, JoinAsTheirStyleSays)
{
    struct Case {
        const char* name;
        swf::LineStyle::Join join;
        double miterLimit;
        bool tip, shoulder; // the corner's outermost pixel; one halfway there
    };
    constexpr Case kCases[] = {{"round", swf::LineStyle::Join::Round, 3, false, true},
                               {"bevel", swf::LineStyle::Join::Bevel, 3, false, false},
                               {"miter", swf::LineStyle::Join::Miter, 3, true, true},
                               {"cut off miter", swf::LineStyle::Join::Miter, 1, false, true}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        swf::LineStyle style = lineStyle(16);
        style.join = c.join;
        style.miterLimit = c.miterLimit;
        Picture picture(50, 50);
        picture.canvas.drawShape(shapeOf({{}, {style}, {run({{40, 10}, {10, 10}, {10, 40}}, 0, 0, 1)}}),
                                 kStage);
        EXPECT_EQ(picture.at(2, 2), c.tip ? kBlack : kWhite);
        EXPECT_EQ(picture.at(5, 5), c.shoulder ? kBlack : kWhite);
        EXPECT_EQ(picture.at(7, 7), kBlack);
    }
}

TEST(Strokes, ClosedPathsJoinWhereTheyMeet)
{
    swf::LineStyle style = lineStyle(4);
    style.join = swf::LineStyle::Join::Miter;
    style.startCap = style.endCap = swf::LineStyle::Cap::None;
    const swf::EdgeRun square = rectRun(6, 6, 14, 14, 0, 1);
    Picture closed(20, 20);
    closed.canvas.drawShape(shapeOf({{}, {style}, {square}}), kStage);
    EXPECT_EQ(closed.at(4, 4), kBlack);
    EXPECT_EQ(closed.at(10, 10), kWhite);
    style.noClose = true;
    Picture open(20, 20);
    open.canvas.drawShape(shapeOf({{}, {style}, {square}}), kStage);
    EXPECT_EQ(open.at(4, 4), kWhite);
    EXPECT_EQ(open.at(15, 4), kBlack);
}

TEST(Strokes, AreNeverThinnerThanAPixelAndScaleUnlessTold)
{
    const auto widthAt = [](const swf::LineStyle& style, const swf::Matrix& matrix) {
        Picture picture(20, 40);
        picture.canvas.drawShape(shapeOf({{}, {style}, {run({{-100, 1}, {100, 1}}, 0, 0, 1)}}), matrix);
        double sum = 0;
        for (int y = 0; y < 40; ++y) sum += 1 - (picture.at(10, y) & 0xFF) / 255.0;
        return sum;
    };
    const swf::Matrix ten = twipsToPixels({10, 0, 0, 10, 0, 0});
    EXPECT_NEAR(widthAt(lineStyle(0), kStage), 1, 0.01);
    EXPECT_NEAR(widthAt(lineStyle(0), ten), 1, 0.01);
    EXPECT_NEAR(widthAt(lineStyle(0.5), kStage), 1, 0.01);
    EXPECT_NEAR(widthAt(lineStyle(1.5), ten), 15, 0.01);
    swf::LineStyle fixed = lineStyle(3);
    fixed.noHorizontalScale = fixed.noVerticalScale = true;
    EXPECT_NEAR(widthAt(fixed, ten), 3, 0.01);
}

TEST(Strokes, ScaleInOneDirectionAsFarAsADiagonalIsMovedThatWay)
{
    swf::LineStyle across = lineStyle(4), down = across;
    across.noVerticalScale = true;
    down.noHorizontalScale = true;
    const swf::Matrix stretched = twipsToPixels({2, 0, 0, 3, 0, 0});
    EXPECT_NEAR(strokeWidth(across, stretched, 1), 8, 1e-9);
    EXPECT_NEAR(strokeWidth(down, stretched, 1), 12, 1e-9);
    // Turned by 45 degrees and stretched before.
    const swf::Matrix turned = twipsToPixels({0.7071, 0.7071, -1.4142, 1.4142, 0, 0});
    EXPECT_NEAR(strokeWidth(across, turned, 1), 1, 1e-9);
    EXPECT_NEAR(strokeWidth(down, turned, 1), 4 * 2.1213, 1e-3);
}

TEST(Strokes, DoNotBlendTwiceWhereTheyCrossThemselves)
{
    const swf::LineStyle style = lineStyle(4, {0, 0, 0, 128});
    Picture picture(30, 30);
    picture.canvas.drawShape(
        shapeOf({{}, {style}, {run({{4, 15}, {26, 15}, {26, 26}, {15, 26}, {15, 4}}, 0, 0, 1)}}), kStage);
    EXPECT_EQ(picture.at(8, 15), 0xFF7F7F7F);
    EXPECT_EQ(picture.at(15, 15), 0xFF7F7F7F);
}

TEST(Strokes, HintedLinesCoverWholePixels)
{
    swf::LineStyle style = lineStyle(1);
    style.startCap = style.endCap = swf::LineStyle::Cap::None;
    style.pixelHinting = true;
    Picture picture(20, 6);
    picture.canvas.drawShape(shapeOf({{}, {style}, {run({{0, 3}, {20, 3}}, 0, 0, 1)}}), kStage);
    EXPECT_EQ(picture.at(10, 2), kWhite);
    EXPECT_EQ(picture.at(10, 3), kBlack);
    EXPECT_EQ(picture.at(10, 4), kWhite);
}

TEST(Strokes, HintsMoveNothingWithoutSmoothedEdges)
{
    swf::LineStyle style = lineStyle(5);
    const auto draw = [&](bool isHinted) {
        style.pixelHinting = isHinted;
        Picture picture(20, 20, {255, 255, 255, 255}, Quality::Low);
        picture.canvas.drawShape(shapeOf({{}, {style}, {run({{2, 12}, {15, 12}, {15.6, 3}}, 0, 0, 1)}}),
                                 kStage);
        return std::move(picture.surface);
    };
    const Surface hinted = draw(true), plain = draw(false);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x) ASSERT_EQ(hinted.pixel(x, y), plain.pixel(x, y)) << x << "," << y;
    EXPECT_EQ(plain.pixel(10, 9), kBlack);
    EXPECT_EQ(plain.pixel(10, 14), kWhite);
}

// ---- masks and layers -------------------------------------------------------------------------------------

TEST(Masks, LimitToWhatTheyCoverHoweverTransparent)
{
    Picture picture(10, 10);
    picture.canvas.beginMask();
    picture.canvas.drawShape(rectShape(2, 2, 8, 5.5, solid(0, 0, 0, 0)), kStage);
    picture.canvas.endMask();
    EXPECT_EQ(picture.canvas.clip(), (IntRect{2, 2, 8, 6}));
    picture.canvas.drawShape(rectShape(0, 0, 10, 10, solid(255, 0, 0)), kStage);
    picture.canvas.popMask();
    EXPECT_EQ(picture.at(1, 3), kWhite);
    EXPECT_EQ(picture.at(2, 2), kRed);
    EXPECT_EQ(picture.at(4, 5), 0xFFFF7F7F); // half covered
    EXPECT_EQ(picture.at(4, 6), kWhite);
    picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(0, 0, 255)), kStage);
    EXPECT_EQ(picture.at(0, 0), kBlue);
}

TEST(Masks, NestedOnesIntersectAndLinesDoNotCount)
{
    Picture picture(12, 12);
    const swf::EdgeRun diamond = run({{6, 0}, {12, 6}, {6, 12}, {0, 6}, {6, 0}}, 0, 1, 1);
    picture.canvas.beginMask();
    picture.canvas.drawShape(shapeOf({{solid(0, 0, 0)}, {lineStyle(10)}, {diamond}}), kStage);
    picture.canvas.endMask();
    picture.canvas.beginMask();
    picture.canvas.drawShape(rectShape(0, 0, 6, 12, solid(0, 0, 0)), kStage);
    picture.canvas.endMask();
    picture.canvas.drawShape(rectShape(0, 0, 12, 12, solid(255, 0, 0)), kStage);
    picture.canvas.popMask();
    EXPECT_EQ(picture.at(0, 0), kWhite);
    EXPECT_EQ(picture.at(4, 6), kRed);
    EXPECT_EQ(picture.at(8, 6), kWhite);
    picture.canvas.drawShape(rectShape(0, 0, 12, 12, solid(0, 0, 255)), kStage);
    picture.canvas.popMask();
    EXPECT_EQ(picture.at(8, 6), kBlue);
    EXPECT_EQ(picture.at(0, 0), kWhite);
}

TEST(Masks, OfAlphaLetThroughByDegrees)
{
    Picture picture(4, 1);
    picture.canvas.beginMask(MaskKind::Alpha);
    picture.canvas.drawShape(rectShape(0, 0, 2, 1, solid(9, 9, 9, 51)), kStage);
    picture.canvas.endMask();
    picture.canvas.drawShape(rectShape(0, 0, 4, 1, solid(0, 0, 0)), kStage);
    picture.canvas.popMask();
    EXPECT_EQ(picture.at(0, 0), 0xFFCCCCCC);
    EXPECT_EQ(picture.at(3, 0), kWhite);
}

TEST(Masks, EmptyOnesHideEverything)
{
    Picture picture(4, 4);
    picture.canvas.beginMask();
    picture.canvas.endMask();
    EXPECT_TRUE(picture.canvas.clip().isEmpty());
    picture.canvas.drawShape(rectShape(0, 0, 4, 4, solid(0, 0, 0)), kStage);
    picture.canvas.beginLayer({0, 0, 4, 4});
    picture.canvas.drawShape(rectShape(0, 0, 4, 4, solid(0, 0, 0)), kStage);
    picture.canvas.endLayer();
    picture.canvas.popMask();
    EXPECT_EQ(picture.at(1, 1), kWhite);
}

TEST(Layers, FadeAsAWhole)
{
    swf::ColorTransform half;
    half.alphaMul = 128;
    Picture picture(6, 1);
    picture.canvas.beginLayer({0, 0, 6, 1});
    picture.canvas.drawShape(rectShape(0, 0, 4, 1, solid(0, 0, 0)), kStage);
    picture.canvas.drawShape(rectShape(2, 0, 5, 1, solid(0, 0, 0)), kStage);
    picture.canvas.endLayer(BlendMode::Layer, half);
    EXPECT_EQ(picture.at(1, 0), 0xFF7F7F7F);
    EXPECT_EQ(picture.at(3, 0), 0xFF7F7F7F);
    EXPECT_EQ(picture.at(5, 0), kWhite);
}

TEST(Layers, OutsideTheSurfaceOrTooLargeAreSkippedWithTheirContent)
{
    Picture picture(4, 4);
    for (const IntRect bounds : {IntRect{100, 100, 200, 200}, IntRect{}, IntRect{-1, -1, 0, 0}}) {
        picture.canvas.beginLayer(bounds);
        picture.canvas.drawShape(rectShape(0, 0, 4, 4, solid(255, 0, 0)), kStage);
        picture.canvas.endLayer();
    }
    EXPECT_EQ(picture.at(1, 1), kWhite);
}

TEST(Layers, BlendOpaqueColoursByTheFormulaOfTheirMode)
{
    struct Case {
        const char* name;
        BlendMode mode;
        std::uint32_t expected; // of 0x40C0FF over 0x8040C0
    };
    constexpr Case kCases[] = {
        {"normal", BlendMode::Normal, 0xFF40C0FF},         {"layer", BlendMode::Layer, 0xFF40C0FF},
        {"multiply", BlendMode::Multiply, 0xFF2030C0},     {"screen", BlendMode::Screen, 0xFFA0D0FF},
        {"lighten", BlendMode::Lighten, 0xFF80C0FF},       {"darken", BlendMode::Darken, 0xFF4040C0},
        {"difference", BlendMode::Difference, 0xFF40803F}, {"add", BlendMode::Add, 0xFFC0FFFF},
        {"subtract", BlendMode::Subtract, 0xFF400000},     {"invert", BlendMode::Invert, 0xFF7FBF3F},
        {"hard light", BlendMode::HardLight, 0xFF40A1FF},  {"overlay", BlendMode::Overlay, 0xFF4160FF},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        Picture picture(1, 1, {0x80, 0x40, 0xC0, 255});
        picture.canvas.beginLayer({0, 0, 1, 1});
        picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(0x40, 0xC0, 0xFF)), kStage);
        picture.canvas.endLayer(c.mode);
        for (int shift = 0; shift < 32; shift += 8)
            EXPECT_NEAR(static_cast<int>(picture.at(0, 0) >> shift & 0xFF),
                        static_cast<int>(c.expected >> shift & 0xFF), 2)
                << std::hex << picture.at(0, 0);
    }
}

TEST(Layers, BlendTransparentColoursLikeTheGeneralFormula)
{
    // (1 - sa) ba B + (1 - ba) sa S + sa ba mode(S, B), by which all separable modes are defined.
    struct Case {
        const char* name;
        BlendMode mode;
        double (*function)(double s, double b);
    };
    const Case kCases[] = {
        {"multiply", BlendMode::Multiply, [](double s, double b) { return s * b; }},
        {"screen", BlendMode::Screen, [](double s, double b) { return s + b - s * b; }},
        {"lighten", BlendMode::Lighten, [](double s, double b) { return std::max(s, b); }},
        {"darken", BlendMode::Darken, [](double s, double b) { return std::min(s, b); }},
        {"difference", BlendMode::Difference, [](double s, double b) { return std::abs(s - b); }},
        {"subtract", BlendMode::Subtract, [](double s, double b) { return std::max(b - s, 0.0); }},
        {"hard light", BlendMode::HardLight,
         [](double s, double b) { return s <= 0.5 ? 2 * s * b : 1 - 2 * (1 - s) * (1 - b); }},
    };
    const swf::Rgba sources[] = {
        {200, 100, 30, 90}, {10, 255, 128, 255}, {0, 0, 0, 128}, {255, 255, 255, 20}};
    const swf::Rgba belows[] = {{60, 220, 128, 255}, {250, 10, 99, 120}, {0, 0, 0, 0}};
    for (const Case& c : kCases)
        for (const swf::Rgba& s : sources)
            for (const swf::Rgba& b : belows) {
                SCOPED_TRACE(c.name);
                Picture picture(1, 1, b);
                picture.canvas.beginLayer({0, 0, 1, 1});
                picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(s.r, s.g, s.b, s.a)), kStage);
                picture.canvas.endLayer(c.mode);
                const double sa = s.a / 255.0, ba = b.a / 255.0;
                const auto expected = [&](int source, int below) {
                    const double x = source / 255.0, y = below / 255.0;
                    return 255 * ((1 - sa) * ba * y + (1 - ba) * sa * x + sa * ba * c.function(x, y));
                };
                const std::uint32_t p = picture.at(0, 0);
                EXPECT_NEAR(p >> 24, 255 * (sa + ba - sa * ba), 1.5);
                EXPECT_NEAR(p >> 16 & 0xFF, expected(s.r, b.r), 3);
                EXPECT_NEAR(p >> 8 & 0xFF, expected(s.g, b.g), 3);
                EXPECT_NEAR(p & 0xFF, expected(s.b, b.b), 3);
            }
}

TEST(Layers, AddAddsAllFourChannelsUp)
{
    Picture picture(1, 1, {100, 10, 0, 128});
    picture.canvas.beginLayer({0, 0, 1, 1});
    picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(255, 20, 40, 100)), kStage);
    picture.canvas.endLayer(BlendMode::Add);
    // Premultiplied: 50 + 100, 5 + 8, 0 + 16, and 128 + 100 of alpha.
    EXPECT_EQ(picture.at(0, 0), 0xE4960D10);
}

TEST(Layers, AlphaAndEraseActOnTheEnclosingLayer)
{
    for (const BlendMode mode : {BlendMode::Alpha, BlendMode::Erase}) {
        Picture picture(2, 1);
        picture.canvas.beginLayer({0, 0, 2, 1});
        picture.canvas.drawShape(rectShape(0, 0, 2, 1, solid(0, 0, 0)), kStage);
        picture.canvas.beginLayer({0, 0, 2, 1});
        picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(1, 2, 3)), kStage);
        picture.canvas.endLayer(mode);
        picture.canvas.endLayer();
        EXPECT_EQ(picture.at(0, 0), mode == BlendMode::Alpha ? kBlack : kWhite);
        EXPECT_EQ(picture.at(1, 0), mode == BlendMode::Alpha ? kWhite : kBlack);
    }
}

TEST(Layers, AlphaAndEraseSpareAStage)
{
    for (const bool stage : {true, false}) {
        Picture picture(1, 1, {0, 0, 255, static_cast<std::uint8_t>(stage ? 255 : 254)});
        picture.canvas.beginLayer({0, 0, 1, 1});
        picture.canvas.drawShape(rectShape(0, 0, 1, 1, solid(255, 0, 0)), kStage);
        picture.canvas.endLayer(BlendMode::Erase);
        EXPECT_EQ(picture.at(0, 0), stage ? kBlue : 0U);
    }
}

TEST(RenderCache, DropsDeadShapesAndKeepsToItsBudget)
{
    RenderCache cache(64 << 10);
    Surface surface(64, 64);
    Canvas canvas(surface.view(), Quality::High, cache);
    std::vector<std::shared_ptr<const swf::Shape>> alive;
    for (int i = 0; i < 2000; ++i) {
        swf::ShapeLayer layer{{solid(255, 0, 0)}, {lineStyle(2)}, {}};
        swf::EdgeRun curve;
        curve.fill1 = curve.line = 1;
        curve.edges = {curveTo(60, 0, 60, 60), curveTo(0, 60, 0, 0)};
        layer.runs = {curve};
        alive.push_back(shapeOf(layer));
        if (i % 2 == 0) alive.pop_back();
        if (!alive.empty()) canvas.drawShape(alive.back(), kStage);
        ASSERT_LE(cache.usedBytes(), std::size_t{64} << 10);
    }
    EXPECT_EQ(surface.pixel(40, 20), kRed);
}

// Letters of shapes that come and go, some where a dead one lay, in a cache that has no room for all.
TEST(RenderCache, DrawsNoLetterOfAnother)
{
    RenderCache cache(48 << 10);
    std::vector<std::shared_ptr<const swf::Shape>> alive;
    std::mt19937 random(3);
    for (int round = 0; round < 3000; ++round) {
        if (alive.size() < 20) {
            const double width = 1 + random() % 40 / 4.0, height = 1 + random() % 40 / 4.0;
            alive.push_back(shapeOf(
                {{solid(0, 0, 0)}, {}, {run({{0, 0}, {width, 1}, {width / 2, height}, {0, 0}}, 0, 1)}}));
        }
        const std::size_t which = random() % alive.size();
        const auto place = [&] { return random() % 5 * 2.5; };
        const GlyphPlacement glyph{alive[which], kStage * swf::Matrix{1, 0, 0, 1, place(), place()}};
        Picture fresh(16, 16);
        fresh.canvas.drawGlyphs({&glyph, 1}, {0, 0, 0, 255});
        Surface surface(16, 16);
        Canvas canvas(surface.view(), Quality::High, cache);
        canvas.clear({255, 255, 255, 255});
        canvas.drawGlyphs({&glyph, 1}, {0, 0, 0, 255});
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                ASSERT_EQ(surface.pixel(x, y), fresh.at(x, y)) << round << ": " << x << "," << y;
        if (random() % 8 == 0) alive.erase(alive.begin() + static_cast<std::ptrdiff_t>(which));
    }
    EXPECT_LE(cache.usedBytes(), std::size_t{48} << 10);
}

TEST(RenderCache, ForgetsDeadShapesLongBeforeItsBudgetIsSpent)
{
    RenderCache cache;
    Surface surface(64, 64);
    Canvas canvas(surface.view(), Quality::High, cache);
    for (int i = 0; i < 10000; ++i) canvas.drawShape(rectShape(0, 0, 1, 1, solid(255, 0, 0)), kStage);
    EXPECT_LT(cache.usedBytes(), std::size_t{2} << 20);
}

} // namespace
} // namespace flash::render
