#include "MovieWriter.h"

namespace flash::swf
{
namespace
{

constexpr Rgba kRed{255, 0, 0, 255}, kBlue{0, 0, 255, 255};

std::shared_ptr<const Shape> shapeOf(const Movie& movie, std::uint16_t id)
{
    const auto* character = definition<ShapeCharacter>(movie, id);
    return character ? character->shape : std::make_shared<const Shape>();
}

BodyWriter shapeHead(std::uint16_t id) { return BodyWriter().u16(id).rect(0, 100, 0, 100); }

TEST(Shape, BreaksItsEdgesIntoRunsOfOneStyle)
{
    const auto movie = parsed(movieBytes(6, {tag(2, shapeHead(1)
                                                        .u8(2)
                                                        .u8(0)
                                                        .rgb(kRed)
                                                        .u8(0)
                                                        .rgb(kBlue)
                                                        .u8(1)
                                                        .u16(20)
                                                        .rgb(kBlue)
                                                        .indexWidths(2, 1)
                                                        .fill1(1)
                                                        .moveTo(10, 20)
                                                        .lineTo(100, 0)
                                                        .curveTo(1, 2, 3, 4)
                                                        .fill0(2)
                                                        .line(1)
                                                        .lineTo(0, -7)
                                                        .fill1(3)
                                                        .lineTo(1, 1)
                                                        .endShape())}));
    const auto shape = shapeOf(*movie, 1);
    ASSERT_EQ(shape->layers.size(), 1U);
    const auto& runs = shape->layers[0].runs;
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[0].startX, 10);
    EXPECT_EQ(runs[0].startY, 20);
    ASSERT_EQ(runs[0].edges.size(), 2U);
    EXPECT_EQ(runs[0].edges[0].anchorX, 110);
    EXPECT_TRUE(runs[0].edges[1].curved);
    EXPECT_EQ(runs[0].edges[1].controlX, 111);
    EXPECT_EQ(runs[0].edges[1].controlY, 22);
    EXPECT_EQ(runs[0].edges[1].anchorX, 114);
    EXPECT_EQ(runs[0].edges[1].anchorY, 26);
    EXPECT_EQ(std::tuple(runs[0].fill0, runs[0].fill1, runs[0].line), std::tuple(0, 1, 0));
    EXPECT_EQ(std::tuple(runs[1].fill0, runs[1].fill1, runs[1].line), std::tuple(2, 1, 1));
    EXPECT_EQ(runs[1].startX, 114);
    EXPECT_EQ(runs[1].edges[0].anchorY, 19);
    EXPECT_EQ(runs[2].fill1, 0) << "an index past the styles paints nothing";
}

TEST(Shape, StartsALayerWithNewStylesAndForgetsTheOldOnes)
{
    BodyWriter body =
        shapeHead(1).u8(1).u8(0).rgb(kRed).u8(0).indexWidths(1, 0).fill1(1).fill0(1).lineTo(5, 5);
    // New styles and a fill index in one record: the index is one of the new styles.
    body.bits(0b010100, 6).bits(1, 1);
    body.u8(1).u8(0).rgb(kBlue).u8(0).indexWidths(1, 0).lineTo(1, 0).endShape();
    const auto shape = shapeOf(*parsed(movieBytes(6, {tag(22, body)})), 1);
    ASSERT_EQ(shape->layers.size(), 2U);
    EXPECT_EQ(shape->layers[1].fills.at(0).color, kBlue);
    ASSERT_EQ(shape->layers[1].runs.size(), 1U);
    EXPECT_EQ(shape->layers[1].runs[0].fill1, 1);
    EXPECT_EQ(shape->layers[1].runs[0].fill0, 0);
    EXPECT_EQ(shape->layers[1].runs[0].startX, 5);
}

TEST(Shape, ReadsTheLinesAndWindingOfItsFourthForm)
{
    const auto movie = parsed(sampleMovie());
    const auto shape = shapeOf(*movie, 11);
    EXPECT_EQ(shape->edgeBounds, (Rect{1, 2, 3, 4}));
    ASSERT_EQ(shape->layers.size(), 1U);
    EXPECT_TRUE(shape->layers[0].nonZeroWinding);
    const auto& fills = shape->layers[0].fills;
    ASSERT_EQ(fills.size(), 3U);
    EXPECT_EQ(fills[0].kind, FillStyle::Kind::LinearGradient);
    ASSERT_EQ(fills[0].gradient.stops.size(), 2U);
    EXPECT_EQ(fills[0].gradient.stops[1].color.a, 128);
    EXPECT_EQ(fills[1].gradient.focalPoint, 0.5);
    EXPECT_FALSE(fills[2].repeat);
    EXPECT_TRUE(fills[2].smooth);
    ASSERT_TRUE(fills[2].bitmap);
    EXPECT_EQ(fills[2].bitmap->width, 8);
    const LineStyle& line = shape->layers[0].lines.at(0);
    EXPECT_EQ(line.startCap, LineStyle::Cap::None);
    EXPECT_EQ(line.join, LineStyle::Join::Miter);
    EXPECT_EQ(line.miterLimit, 2);
    EXPECT_TRUE(line.noHorizontalScale && line.noVerticalScale && line.pixelHinting && line.noClose);
    EXPECT_EQ(line.endCap, LineStyle::Cap::None);
    ASSERT_TRUE(line.fill);
    EXPECT_EQ(line.fill->kind, FillStyle::Kind::RadialGradient);
}

TEST(Shape, IsLinkedToABitmapThatComesAfterIt)
{
    const ByteList shape = tag(2, shapeHead(1)
                                      .u8(2)
                                      .u8(0x42)
                                      .u16(9)
                                      .translation(0, 0)
                                      .u8(0x40)
                                      .u16(0xFFFF)
                                      .translation(0, 0)
                                      .u8(0)
                                      .indexWidths(1, 0)
                                      .endShape());
    const ByteList bitmap = tag(20, BodyWriter().u16(9).u8(5).u16(1).u16(1).raw(deflated({0, 1, 2, 3})));
    const auto linked = shapeOf(*parsed(movieBytes(6, {shape, bitmap})), 1);
    const auto& fills = linked->layers.at(0).fills;
    ASSERT_TRUE(fills.at(0).bitmap);
    EXPECT_TRUE(fills[0].repeat);
    EXPECT_FALSE(fills[0].smooth);
    EXPECT_EQ(fills[0].bitmap->pixels, std::vector<std::uint32_t>{0xFF010203});
    EXPECT_FALSE(fills.at(1).bitmap);
}

TEST(Shape, KeepsItsCoordinatesInsideTheirRange)
{
    BodyWriter body = shapeHead(1).u8(0).u8(0).indexWidths(0, 0);
    body.bits(1, 6)
        .bits(31, 5)
        .signedBits(0x3FFFFFFF, 31)
        .signedBits(-0x40000000, 31)
        .lineTo(9, -9)
        .endShape();
    const auto shape = shapeOf(*parsed(movieBytes(6, {tag(2, body)})), 1);
    const EdgeRun& run = shape->layers.at(0).runs.at(0);
    EXPECT_EQ(run.edges.at(0).anchorX, 1 << 29);
    EXPECT_EQ(run.edges.at(0).anchorY, -(1 << 29));
}

// ---- morphing ---------------------------------------------------------------------------------------------

std::shared_ptr<const MorphShape> morphOf(const BodyWriter& start, const BodyWriter& end)
{
    const BodyWriter styles =
        BodyWriter().u8(1).u8(0).rgba(kRed).rgba(kBlue).u8(1).u16(20).u16(60).rgba(kRed).rgba(kBlue);
    const BodyWriter body = BodyWriter()
                                .u16(1)
                                .rect(0, 100, 0, 100)
                                .rect(0, 300, 0, 200)
                                .u32(static_cast<std::uint32_t>(styles.bytes().size() + start.bytes().size()))
                                .raw(styles.bytes())
                                .raw(start.bytes())
                                .raw(end.bytes());
    const auto movie = parsed(movieBytes(6, {tag(46, body)}));
    const auto* character = definition<MorphCharacter>(*movie, 1);
    return character ? character->morph : std::make_shared<const MorphShape>();
}

TEST(MorphShape, PairsEdgesWhereverEitherSideBreaksItsChain)
{
    const auto morph = morphOf(
        BodyWriter().indexWidths(1, 1).fill1(1).moveTo(0, 0).lineTo(10, 0).line(1).lineTo(0, 20).endShape(),
        BodyWriter().indexWidths(0, 0).moveTo(100, 100).curveTo(5, 5, 5, -5).lineTo(0, 40).endShape());
    ASSERT_EQ(morph->start.layers.size(), 1U);
    const auto& startRuns = morph->start.layers[0].runs;
    const auto& endRuns = morph->end.layers.at(0).runs;
    ASSERT_EQ(startRuns.size(), 2U);
    ASSERT_EQ(endRuns.size(), 2U);
    EXPECT_EQ(endRuns[0].startX, 100);
    EXPECT_EQ(endRuns[1].startX, 110);
    EXPECT_EQ(endRuns[1].line, 1);
    ASSERT_TRUE(startRuns[0].edges.at(0).curved) << "a line that pairs with a curve is one itself";
    EXPECT_EQ(startRuns[0].edges[0].controlX, 5);
    EXPECT_TRUE(endRuns[0].edges.at(0).curved);
    EXPECT_FALSE(startRuns[1].edges.at(0).curved);
}

TEST(MorphShape, IsItsEndsAtBothEndsAndHalfOfEachBetween)
{
    const auto morph = morphOf(BodyWriter().indexWidths(1, 1).fill1(1).moveTo(0, 0).lineTo(10, 0).endShape(),
                               BodyWriter().indexWidths(0, 0).moveTo(100, 50).lineTo(30, 7).endShape());
    const Shape start = interpolate(*morph, 0);
    EXPECT_EQ(start.bounds, (Rect{0, 100, 0, 100}));
    EXPECT_EQ(start.layers.at(0).fills.at(0).color, kRed);
    const Shape end = interpolate(*morph, 65535);
    EXPECT_EQ(end.bounds, (Rect{0, 300, 0, 200}));
    EXPECT_EQ(end.layers.at(0).runs.at(0).edges.at(0).anchorY, 57);
    EXPECT_EQ(end.layers.at(0).lines.at(0).width, 60);
    EXPECT_EQ(end.layers.at(0).lines.at(0).color, kBlue);
    const Shape half = interpolate(*morph, 32768);
    EXPECT_EQ(half.layers.at(0).runs.at(0).startX, 50);
    EXPECT_EQ(half.layers.at(0).runs.at(0).edges.at(0).anchorX, 70);
    EXPECT_EQ(half.layers.at(0).lines.at(0).width, 40);
    // Colours are cut to whole numbers, as the genuine player does it.
    EXPECT_EQ(half.layers.at(0).fills.at(0).color, (Rgba{127, 0, 127, 255}));
}

} // namespace
} // namespace flash::swf
