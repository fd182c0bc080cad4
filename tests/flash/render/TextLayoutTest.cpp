#include "flash/render/TextLayout.h"

#include "Shapes.h"

#include <QGuiApplication>

#include <array>
#include <gtest/gtest.h>

namespace flash::render
{
namespace
{

using namespace test;
using Align = swf::EditText::Align;

// Every character is half an em wide, 'W' a whole one; ascent 0.8 em, descent 0.2. At the size used below an
// em is 200 twips, so a usual character takes 100.
FontFacePtr testFace()
{
    auto font = std::make_shared<swf::Font>();
    font->unitsPerEm = 1000;
    font->hasLayout = true;
    font->ascent = 800;
    font->descent = 200;
    for (std::uint16_t code = 32; code < 127; ++code) {
        swf::Font::Glyph glyph;
        glyph.code = code;
        glyph.advance = code == 'W' ? 1000 : 500;
        if (code != 32) glyph.outline = rectShape(0, -30, 20, 0, solid(0, 0, 0)); // 400 units wide, 600 high
        font->glyphByCode[code] = static_cast<std::uint16_t>(font->glyphs.size());
        font->glyphs.push_back(glyph);
    }
    font->kerning = {{'A', 'V', -100}};
    return makeEmbeddedFace(font);
}

class OneFace final : public FontSource
{
public:
    FontFacePtr face(const TextStyle& style) override { return style.font == "none" ? nullptr : m_face; }

private:
    FontFacePtr m_face = testFace();
};

TextStyle style()
{
    TextStyle result;
    result.size = 200;
    return result;
}

TextLayout layOut(std::u16string_view text, const TextOptions& options, TextStyle textStyle = style())
{
    OneFace fonts;
    return {text, {{text.size(), std::move(textStyle)}}, options, fonts};
}

std::vector<std::u16string> linesOf(const TextLayout& layout, std::u16string_view text)
{
    std::vector<std::u16string> result;
    for (const LayoutLine& line : layout.lines())
        result.emplace_back(text.substr(line.begin, line.end - line.begin));
    return result;
}

TEST(TextLayout, BreaksLinesAtSpacesHyphensAndWhereNothingElseHelps)
{
    struct Case {
        const char* name;
        std::u16string_view text;
        double width;
        bool wrap, multiline;
        std::vector<std::u16string> lines;
    };
    const Case cases[] = {
        {"empty", u"", 1000, true, true, {u""}},
        {"no wrapping", u"aaa bbb ccc", 500, false, true, {u"aaa bbb ccc"}},
        {"at spaces", u"aaa bbb ccc", 700, true, true, {u"aaa bbb ", u"ccc"}},
        {"spaces hang over the end", u"aaa    bbb", 300, true, true, {u"aaa    ", u"bbb"}},
        {"after hyphens", u"aaa-bbb", 500, true, true, {u"aaa-", u"bbb"}},
        {"within long words", u"aaaaaaa", 300, true, true, {u"aaa", u"aaa", u"a"}},
        {"narrower than a character", u"ab", 10, true, true, {u"a", u"b"}},
        {"at line breaks", u"a\rb\n\nc\r", 1000, true, true, {u"a\r", u"b\n", u"\n", u"c\r", u""}},
        {"not at line breaks of a single line", u"a\rb", 1000, false, false, {u"a\rb"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const TextLayout layout =
            layOut(c.text, {.width = c.width, .wordWrap = c.wrap, .multiline = c.multiline, .password = {}});
        EXPECT_EQ(linesOf(layout, c.text), c.lines);
    }
}

TEST(TextLayout, MeasuresLines)
{
    TextStyle textStyle = style();
    textStyle.leading = 40;
    const TextLayout layout = layOut(u"aW\rb", {.width = 5000, .password = {}}, textStyle);
    ASSERT_EQ(layout.lines().size(), 2U);
    EXPECT_DOUBLE_EQ(layout.width(), 300);
    EXPECT_DOUBLE_EQ(layout.height(), 440);
    EXPECT_DOUBLE_EQ(layout.lines()[0].ascent, 160);
    EXPECT_DOUBLE_EQ(layout.lines()[1].baseline, 200 + 40 + 160);
}

TEST(TextLayout, MixedSizesShareABaseline)
{
    OneFace fonts;
    TextStyle large = style();
    large.size = 400;
    const TextLayout layout(u"ab", {{1, style()}, {1, large}}, {.width = 5000, .password = {}}, fonts);
    ASSERT_EQ(layout.lines().size(), 1U);
    EXPECT_DOUBLE_EQ(layout.lines()[0].baseline, 320);
    EXPECT_DOUBLE_EQ(layout.height(), 400);
    EXPECT_DOUBLE_EQ(layout.glyphs()[1].x, 100);
    EXPECT_DOUBLE_EQ(layout.width(), 300);
}

TEST(TextLayout, AlignsWithinMarginsAndIndents)
{
    struct Case {
        const char* name;
        Align align;
        bool autoSize;
        double first, second; // x of the lines
    };
    // Lines "aaa", which is indented, and "bb"; the margins leave 100 to 900.
    constexpr Case kCases[] = {{"left", Align::Left, false, 150, 100},
                               {"right", Align::Right, false, 600, 700},
                               {"center", Align::Center, false, 375, 400},
                               {"right, as wide as the text", Align::Right, true, 150, 250}};
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        TextStyle textStyle = style();
        textStyle.align = c.align;
        textStyle.leftMargin = textStyle.rightMargin = 100;
        textStyle.indent = 50;
        // Both lines start paragraphs, but only one of them is to be indented.
        TextStyle second = textStyle;
        second.indent = 0;
        OneFace fonts;
        const TextLayout layout(u"aaa\rbb", {{4, textStyle}, {2, second}},
                                {.width = 1000, .autoSize = c.autoSize, .password = {}}, fonts);
        ASSERT_EQ(layout.lines().size(), 2U);
        EXPECT_DOUBLE_EQ(layout.lines()[0].x, c.first);
        EXPECT_DOUBLE_EQ(layout.lines()[1].x, c.second);
        EXPECT_DOUBLE_EQ(layout.glyphs()[3].x, c.second);
    }
    // Margins and indents narrow the room that words are wrapped in.
    TextStyle narrow = style();
    narrow.leftMargin = 100;
    narrow.rightMargin = 550;
    narrow.indent = 50;
    const TextLayout wrapped = layOut(u"aaa bb", {.width = 1000, .wordWrap = true, .password = {}}, narrow);
    ASSERT_EQ(wrapped.lines().size(), 2U);
    EXPECT_DOUBLE_EQ(wrapped.lines()[0].x, 150);
    EXPECT_DOUBLE_EQ(wrapped.lines()[1].x, 100);
}

TEST(TextLayout, JustifiesAllButTheLastLineOfAParagraph)
{
    TextStyle textStyle = style();
    textStyle.align = Align::Justify;
    const TextLayout layout =
        layOut(u"a b c dd e", {.width = 600, .wordWrap = true, .password = {}}, textStyle);
    ASSERT_EQ(layout.lines().size(), 2U);
    EXPECT_DOUBLE_EQ(layout.lines()[0].width, 600);
    EXPECT_DOUBLE_EQ(layout.glyphs()[2].x, 250); // "b": two spaces share the spare 100
    EXPECT_DOUBLE_EQ(layout.glyphs()[4].x, 500);
    EXPECT_DOUBLE_EQ(layout.lines()[1].width, 400);
}

TEST(TextLayout, FlowsAroundWhatStandsAtTheSides)
{
    const std::u16string_view text = u"aa b cc d ee f gg";
    TextOptions options{.width = 1100, .wordWrap = true, .password = {}};
    options.floats = {{0, 400, 250, false}, {1, 200, 100, true}};
    const TextLayout layout = layOut(text, options);
    EXPECT_EQ(linesOf(layout, text), (std::vector<std::u16string>{u"aa b ", u"cc d ee ", u"f gg"}));
    ASSERT_EQ(layout.floats().size(), 2U);
    EXPECT_EQ(layout.floats()[0], (swf::Point{0, 0}));
    EXPECT_EQ(layout.floats()[1], (swf::Point{900, 0})) << "beside the line that it is in";
    EXPECT_DOUBLE_EQ(layout.lines()[1].x, 400);
    EXPECT_DOUBLE_EQ(layout.lines()[2].x, 0);

    // Where nothing is left beside them, the text goes on below; those of one side stand below each other.
    options.floats = {{0, 1090, 250, false}, {0, 10, 40, false}};
    const TextLayout below = layOut(text, options);
    EXPECT_DOUBLE_EQ(below.lines()[0].top, 250);
    EXPECT_DOUBLE_EQ(below.lines()[0].x, 10);
    EXPECT_DOUBLE_EQ(below.lines()[1].x, 0);
    EXPECT_EQ(below.floats()[1], (swf::Point{0, 250}));

    // Amid a line they stand beside it as long as the letters before them have room there, too.
    struct Amid {
        const char* name;
        std::size_t index;
        double width, top;
        std::vector<std::u16string> lines;
    };
    const Amid cases[] = {
        {"just room", 7, 400, 0, {u"aa b cc ", u"d ee f ", u"gg"}},
        {"a space does not count", 8, 400, 0, {u"aa b cc ", u"d ee f ", u"gg"}},
        {"no room", 7, 401, 200, {u"aa b cc d ", u"ee f ", u"gg"}},
        {"the word goes to the next line", 6, 450, 0, {u"aa b ", u"cc d ", u"ee f gg"}},
        {"less than a letter or two left", 1, 701, 200, {u"aa b cc d ", u"ee f gg"}},
    };
    for (const Amid& c : cases) {
        SCOPED_TRACE(c.name);
        options.floats = {{c.index, c.width, 400, false}};
        const TextLayout amid = layOut(text, options);
        EXPECT_EQ(linesOf(amid, text), c.lines);
        EXPECT_EQ(amid.floats().at(0), (swf::Point{0, c.top}));
    }

    options.floats = {{99, 100, 100, false}};
    EXPECT_EQ(layOut(u"a", options).floats().size(), 0U) << "no place in the text";
    options.floats = {{1, 100, 100, false}};
    EXPECT_EQ(layOut(u"a", options).floats().at(0).y, 0) << "behind the last letter";
}

/// Every letter is 0.47 em wide; as it is shaped for pixels it is a box of two by three of them.
class PixelFace final : public FontFace
{
public:
    [[nodiscard]] Metrics metrics() const override { return {1000, 800, 200, 0}; }
    [[nodiscard]] const FaceGlyph* glyph(char32_t) const override { return &m_plain; }
    [[nodiscard]] double kerning(char32_t, char32_t) const override { return 0; }
    [[nodiscard]] bool standsOnPixels() const override { return true; }
    [[nodiscard]] const FaceGlyph* shapedAt(char32_t character, int pixels) const override
    {
        return character == 's' && pixels == 10 ? &m_shaped : nullptr;
    }

private:
    FaceGlyph m_plain{rectShape(0, -40, 20, 0, solid(0, 0, 0)), 470};
    FaceGlyph m_shaped{rectShape(0, -153.6, 102.4, 0, solid(0, 0, 0)), 7 * 1024};
};
class PixelFonts final : public FontSource
{
public:
    FontFacePtr face(const TextStyle&) override { return std::make_shared<PixelFace>(); }
};

TEST(TextLayout, LettersOfTheMachineStandOnPixels)
{
    const auto placesOf = [](double size, double spacing) {
        PixelFonts fonts;
        TextStyle look = style();
        look.size = size;
        look.letterSpacing = spacing;
        const TextLayout layout(u"asa", {{3, look}}, {.width = 5000, .password = {}}, fonts);
        return std::pair(layout.glyphs()[1].x, layout.glyphs()[2].x);
    };
    EXPECT_EQ(placesOf(200, 0), std::pair(100.0, 240.0)); // 4.7 pixels, and 7 as it is shaped
    EXPECT_EQ(placesOf(200, -40), std::pair(60.0, 160.0));
    EXPECT_EQ(placesOf(200, -100), std::pair(100.0, 140.0)) << "a letter is left its place";
    EXPECT_EQ(placesOf(240, 0), std::pair(120.0, 240.0)) << "5.6 pixels; not shaped for this size";

    PixelFonts fonts;
    const TextLayout layout(u"s", {{1, style()}}, {.width = 5000, .password = {}}, fonts);
    Picture plain(20, 20), moved(20, 20), large(40, 40);
    const auto inkOf = [](const Picture& picture, int size) {
        int ink = 0;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x) ink += picture.at(x, y) != kWhite;
        return ink;
    };
    layout.draw(plain.canvas, {0.05, 0, 0, 0.05, 2, 2});
    EXPECT_EQ(inkOf(plain, 20), 6);
    layout.draw(moved.canvas, {0.05, 0, 0, 0.05, 2.3, 2.4});
    EXPECT_EQ(inkOf(moved, 20), 6) << "on whole pixels, wherever its field is";
    layout.draw(large.canvas, {0.1, 0, 0, 0.1, 2, 2});
    EXPECT_GT(inkOf(large, 40), 24) << "not shaped for other pixels than the stage's";
}

TEST(TextLayout, LettersOfTheMachineAreShapedForTheSizeTheyAreSeenIn)
{
    const auto placesOf = [](swf::EditText::Align align) {
        PixelFonts fonts;
        TextStyle look = style();
        look.size = 100;
        look.align = align;
        const TextLayout layout(u"asa", {{3, look}}, {.width = 500, .password = {}}, fonts);
        const TextLayout doubled = layout.shapedFor(0.1);
        EXPECT_EQ(layout.glyphs()[1].shaped, nullptr) << "of 5 pixels there is none";
        EXPECT_NE(doubled.glyphs()[1].shaped, nullptr) << "and of 10";
        EXPECT_EQ(doubled.shapedFor(0.05).glyphs()[1].shaped, nullptr);
        return std::array{layout.glyphs()[0].x, layout.glyphs()[2].x, doubled.glyphs()[0].x,
                          doubled.glyphs()[2].x};
    };
    EXPECT_EQ(placesOf(swf::EditText::Align::Left), (std::array{0.0, 80.0, 0.0, 110.0})) << "7 pixels wide";
    EXPECT_EQ(placesOf(swf::EditText::Align::Right), (std::array{360.0, 440.0, 330.0, 440.0}));
}

TEST(TextLayout, SpacesLettersTabsAndBullets)
{
    TextStyle spaced = style();
    spaced.letterSpacing = 20;
    spaced.kerning = true;
    const TextLayout letters = layOut(u"AVA", {.width = 5000, .password = {}}, spaced);
    EXPECT_DOUBLE_EQ(letters.glyphs()[1].x, 100);
    EXPECT_DOUBLE_EQ(letters.glyphs()[2].x, 220);

    TextStyle tabs = style();
    tabs.tabStops = {300, 450};
    const TextLayout tabbed = layOut(u"a\tb\tc\td", {.width = 5000, .password = {}}, tabs);
    EXPECT_DOUBLE_EQ(tabbed.glyphs()[2].x, 300);
    EXPECT_DOUBLE_EQ(tabbed.glyphs()[4].x, 450);
    EXPECT_DOUBLE_EQ(tabbed.glyphs()[6].x, 550); // beyond the last stop
    const TextLayout unstopped = layOut(u"a\tb\tc", {.width = 5000, .password = {}}, style());
    const double distance = unstopped.glyphs()[2].x;
    EXPECT_NEAR(distance, 1.979 * 200, 1); // of the letters' height
    EXPECT_DOUBLE_EQ(unstopped.glyphs()[4].x, 2 * distance);
    // Letters that reach a stop have the next tab go on to the one after it.
    const TextLayout wide = layOut(u"aaaa\tb", {.width = 5000, .password = {}}, style());
    EXPECT_DOUBLE_EQ(wide.glyphs()[5].x, 2 * distance);

    TextStyle bullet = style();
    bullet.bullet = true;
    EXPECT_DOUBLE_EQ(layOut(u"a", {.width = 5000, .password = {}}, bullet).glyphs()[0].x, 720);
}

TEST(TextLayout, CaretsAndPointsFindEachOther)
{
    const std::u16string_view text = u"aaa bbb\rcc";
    const TextLayout layout = layOut(text, {.width = 400, .wordWrap = true, .password = {}});
    ASSERT_EQ(layout.lines().size(), 3U); // "aaa ", "bbb", "cc"
    for (std::size_t i = 0; i <= text.size(); ++i) {
        const TextLayout::Caret caret = layout.caret(i);
        EXPECT_EQ(layout.caretAt({caret.x + 1, (caret.top + caret.bottom) / 2}), i);
    }
    EXPECT_EQ(layout.caretAt({-50, -50}), 0U);
    EXPECT_EQ(layout.caretAt({5000, 100}), 4U) << "behind the space at which the line was broken";
    EXPECT_EQ(layout.caretAt({5000, 300}), 7U) << "before the line break";
    EXPECT_EQ(layout.caretAt({5000, 5000}), 10U);
    EXPECT_EQ(layout.characterAt({150, 450}), 9U);
    EXPECT_EQ(layout.characterAt({350, 450}), std::nullopt);
    const auto rects = layout.rectsOf(1, 9);
    ASSERT_EQ(rects.size(), 3U);
    EXPECT_EQ(rects[0], (swf::Rect{100, 400, 0, 200}));
    EXPECT_EQ(rects[2], (swf::Rect{0, 100, 400, 600}));
    EXPECT_EQ(layout.characterRect(5), (swf::Rect{100, 200, 200, 400}));
}

TEST(TextLayout, HandlesPasswordsMissingGlyphsFontsAndRuns)
{
    const TextLayout password = layOut(u"WW", {.width = 5000, .password = u'*'});
    EXPECT_DOUBLE_EQ(password.width(), 200);
    EXPECT_DOUBLE_EQ(layOut(u"a\u0416b", {.width = 5000, .password = {}}).width(), 200);
    TextStyle none = style();
    none.font = "none";
    EXPECT_DOUBLE_EQ(layOut(u"abc", {.width = 5000, .password = {}}, none).height(), 0);
    OneFace fonts;
    const TextLayout fewRuns(u"abcd", {{1, style()}}, {.width = 5000, .password = {}}, fonts);
    EXPECT_DOUBLE_EQ(fewRuns.width(), 400);
    const TextLayout noRuns(u"abcd", {}, {.width = 5000, .password = {}}, fonts);
    EXPECT_EQ(noRuns.lines().size(), 1U);
    // Half of a surrogate pair, and a whole one that the font does not have.
    const char16_t odd[] = {0xD83D, u'a', 0xD83D, 0xDE00, 0xDE00};
    EXPECT_DOUBLE_EQ(layOut({odd, 5}, {.width = 5000, .password = {}}).width(), 100);
}

TEST(TextLayout, DrawsGlyphsInTheirColours)
{
    OneFace fonts;
    TextStyle red = style(), blue = style();
    red.color = {255, 0, 0, 255};
    blue.color = {0, 0, 255, 255};
    blue.underline = true;
    const TextLayout layout(u"ab", {{1, red}, {1, blue}}, {.width = 5000, .password = {}}, fonts);
    Picture picture(20, 20);
    layout.draw(picture.canvas,
                twipsToPixels({2, 0, 0, 2, 0, 0})); // characters 10 pixels wide, baseline at 16
    EXPECT_EQ(picture.at(2, 10), kRed);
    EXPECT_EQ(picture.at(9, 10), kWhite);
    EXPECT_EQ(picture.at(12, 10), kBlue);
    EXPECT_EQ(picture.at(2, 18), kWhite);
    EXPECT_EQ(picture.at(19, 18) & 0xFF, 255U);
    EXPECT_NE(picture.at(19, 18), kWhite);
    Picture selected(20, 20);
    layout.draw(selected.canvas, twipsToPixels({2, 0, 0, 2, 0, 0}), {},
                TextLayout::Selection{0, 1, {0, 255, 0, 255}});
    EXPECT_EQ(selected.at(2, 10), kGreen);
}

class DeviceSource final : public FontSource
{
public:
    FontFacePtr face(const TextStyle& style) override
    {
        return m_fonts.face(style.font, style.bold, style.italic);
    }

private:
    DeviceFonts m_fonts;
};

TEST(DeviceFonts, AnswerForTheNamesThatMoviesUse)
{
    DeviceFonts none;
    if (QCoreApplication::instance() == nullptr) {
        EXPECT_EQ(none.face("_sans", false, false), nullptr);
    }
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    DeviceFonts fonts;
    for (const char* family :
         {"_sans", "_serif", "_typewriter", "Arial", "Times New Roman", "No Such Font", ""}) {
        SCOPED_TRACE(family);
        const FontFacePtr face = fonts.face(family, false, false);
        ASSERT_NE(face, nullptr);
        EXPECT_EQ(face, fonts.face(family, false, false));
        for (const char32_t character : {U'A', U'\u0416', U'\u2022'}) {
            const FaceGlyph* glyph = face->glyph(character);
            ASSERT_NE(glyph, nullptr);
            EXPECT_GT(glyph->advance, 0);
            ASSERT_NE(glyph->outline, nullptr);
            EXPECT_FALSE(glyph->outline->bounds.isEmpty());
        }
    }
    const FontFacePtr mono = fonts.face("_typewriter", false, false);
    EXPECT_EQ(mono->glyph(U'i')->advance, mono->glyph(U'W')->advance);
    const FontFacePtr sans = fonts.face("_sans", false, false), bold = fonts.face("_sans", true, false);
    EXPECT_LT(sans->glyph(U'i')->advance, sans->glyph(U'W')->advance);
    EXPECT_LT(sans->glyph(U'n')->advance, bold->glyph(U'n')->advance);
    EXPECT_NEAR(sans->metrics().ascent / sans->metrics().unitsPerEm, 0.905, 1e-9);

    // An "I" stands on the baseline and is about 0.73 em high.
    DeviceSource source;
    TextStyle text;
    text.font = "_sans";
    text.size = 1000;
    const TextLayout layout(u"I", {{1, text}}, {.width = 5000, .password = {}}, source);
    Picture picture(60, 60);
    layout.draw(picture.canvas, kStage);
    int top = 60, bottom = 0;
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 60; ++x)
            if (picture.at(x, y) == kBlack) {
                top = std::min(top, y);
                bottom = std::max(bottom, y);
            }
    EXPECT_NEAR(bottom + 1, 0.905 * 50, 1.5);
    EXPECT_NEAR(bottom + 1 - top, 0.72 * 50, 2.5);
}

} // namespace
} // namespace flash::render
