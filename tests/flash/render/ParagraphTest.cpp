#include "flash/render/Paragraph.h"

#include "Scenes.h"
#include "Shapes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace flash::render
{
namespace
{

using namespace test;
using testing::ElementsAre;
using Rotation = ParagraphRun::Rotation;

/// Every character is half an em wide and 0.8 em high from the baseline on, ascent 0.8, descent 0.2.
class SquareFace final : public FontFace
{
public:
    [[nodiscard]] Metrics metrics() const override { return {1000, 800, 200, 0}; }
    [[nodiscard]] const FaceGlyph* glyph(char32_t) const override { return &m_glyph; }
    [[nodiscard]] double kerning(char32_t, char32_t) const override { return 0; }
    [[nodiscard]] bool hasOwn(char32_t character) const override { return character != 0xFB03; }

private:
    FaceGlyph m_glyph{rectShape(0, -40, 25, 0, solid(0, 0, 0)), 500};
};

/// An em is 200 twips.
std::shared_ptr<const ComposedLine> lineOf(std::u16string text, Paragraph::Options options = {},
                                           Rotation rotation = Rotation::None, LineRequest request = {})
{
    ParagraphRun run;
    run.length = text.size();
    run.face = std::make_shared<SquareFace>();
    run.size = 200;
    run.rotation = rotation;
    if (request.width == 0) request.width = 1e6;
    return Paragraph(std::move(text), {run}, std::move(options)).compose(request);
}

std::vector<double> placesOf(const ComposedLine& line)
{
    std::vector<double> places;
    for (const LineAtom& atom : line.atoms) places.push_back(atom.x);
    return places;
}

TEST(Paragraph, AtomsStandWhereTheyAreSeen)
{
    EXPECT_THAT(placesOf(*lineOf(u"ab\u05D0\u05D1c")), ElementsAre(0, 100, 300, 200, 400));
    // What hangs over the end of a line that runs to the left stands before its beginning.
    EXPECT_THAT(placesOf(*lineOf(u"\u05D0b ", {.baselineFace = {}, .bidiLevel = 1})),
                ElementsAre(100, 0, -100));
}

TEST(Paragraph, LettersThatAreDrawnAsOneAreOneAtom)
{
    // The face has fi and fl, but not ffi.
    EXPECT_EQ(lineOf(u"fix")->atoms.size(), 2U);
    EXPECT_EQ(lineOf(u"offix")->atoms.size(), 4U);
    EXPECT_EQ(lineOf(u"\u0644\u0627")->atoms.size(), 1U);
}

TEST(Paragraph, TurnedLettersTurnAboutTheirMiddle)
{
    const auto across = lineOf(u"ab", {}, Rotation::Quarter);
    EXPECT_THAT(placesOf(*across), ElementsAre(0, 200));
    // As wide as the letter is, about the middle of an ideograph: 0.38 em above the baseline.
    EXPECT_DOUBLE_EQ(across->atoms[0].top, -76 - 50);
    EXPECT_DOUBLE_EQ(across->atoms[0].bottom, -76 + 50);
    const auto over = lineOf(u"ab", {}, Rotation::Half);
    EXPECT_THAT(placesOf(*over), ElementsAre(0, 100));

    const Paragraph::Options column{.baselineFace = {}, .isColumn = true};
    const auto mixed = lineOf(u"a\u6F22", column, Rotation::Auto);
    EXPECT_EQ(mixed->atoms[0].quarters, 0);
    EXPECT_EQ(mixed->atoms[1].quarters, 3);
    EXPECT_EQ(lineOf(u"\u6F22", {}, Rotation::Auto)->atoms[0].quarters, 0) << "no column";
}

TEST(Paragraph, TurnedLettersAreSeenTurned)
{
    // A letter 100 twips wide and 160 high becomes 160 wide and 100 high, in the middle of a place of 200.
    const auto boxOf = [](const ComposedLine& line) {
        Picture picture(20, 20);
        line.draw(picture.canvas, {0.05, 0, 0, 0.05, 5, 15}, {});
        IntRect box;
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 20; ++x)
                if (picture.at(x, y) != kWhite) box = unite(box, {x, y, x + 1, y + 1});
        return box;
    };
    const IntRect straight = boxOf(*lineOf(u"a")), turned = boxOf(*lineOf(u"a", {}, Rotation::Quarter));
    EXPECT_EQ(straight.width(), 5);
    EXPECT_EQ(straight.height(), 8);
    EXPECT_NEAR(turned.width(), 8, 1);
    EXPECT_NEAR(turned.height(), 5, 1);
}

TEST(Paragraph, SpacesShrinkAsFarAsTheyMay)
{
    LineRequest request;
    request.width = 510; // 700 with the third word, of which two spaces can give 180
    request.justification.lines = Justification::Lines::AllButLast;
    request.justification.narrowestSpace = 0.1;
    EXPECT_EQ(lineOf(u"aa bb c dd", {}, Rotation::None, request)->end, 6U);
    request.width = 620;
    const auto line = lineOf(u"aa bb c dd", {}, Rotation::None, request);
    EXPECT_EQ(line->end, 8U);
    EXPECT_DOUBLE_EQ(line->textWidth, 620);
    EXPECT_DOUBLE_EQ(line->naturalWidth, 700);
    EXPECT_THAT(placesOf(*line), ElementsAre(0, 100, 200, 260, 360, 460, 520, 620));
    // What would be the last line is not justified: nothing is narrower there.
    EXPECT_EQ(lineOf(u"aa bb c", {}, Rotation::None, request)->end, 6U);
    request.justification.narrowestSpace = 1;
    EXPECT_EQ(lineOf(u"aa bb c dd", {}, Rotation::None, request)->end, 6U);
}

} // namespace
} // namespace flash::render
