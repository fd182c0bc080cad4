#include "flash/stage/StyleSheet.h"
#include "flash/stage/TextHtml.h"

#include <gtest/gtest.h>

namespace flash::stage
{
namespace
{

TextFormat sized(double pixels)
{
    TextFormat format;
    format.style.font = "Font";
    format.style.size = pixels * swf::kTwipsPerPixel;
    return format;
}

/// Each character with its size in pixels in front wherever it changes: "12ab14c".
std::string describe(const TextContent& content)
{
    std::string result;
    std::size_t at = 0;
    for (const TextContent::Run& run : content.runs()) {
        result += std::to_string(static_cast<int>(run.format.style.size / swf::kTwipsPerPixel));
        for (const char16_t c : content.text().substr(at, run.length)) result += static_cast<char>(c);
        at += run.length;
    }
    return result;
}

TEST(TextContent, KeepsFormatsWithTheirCharacters)
{
    TextContent content;
    content.append(u"abc", sized(1));
    content.append(u"def", sized(2));
    content.replace(2, 4, u"XY", sized(3));
    EXPECT_EQ(describe(content), "1ab3XY2ef");
    content.replace(0, 0, u"_", sized(1));
    EXPECT_EQ(describe(content), "1_ab3XY2ef") << "equal neighbours join";
    content.replace(3, 5, u"", sized(9));
    EXPECT_EQ(describe(content), "1_ab2ef");
    content.replace(4, 100, u"z", sized(2));
    EXPECT_EQ(describe(content), "1_ab2ez") << "an end beyond the text means its end";
}

TEST(TextContent, ChangesOnlyTheAttributesThatAFormatNames)
{
    TextContent content;
    content.append(u"abcd", sized(1));
    PartialTextFormat bold;
    bold.bold = true;
    content.apply(1, 3, bold);
    EXPECT_EQ(content.runs().size(), 3U);
    EXPECT_TRUE(content.formatAt(2)->style.bold);
    EXPECT_EQ(content.formatAt(2)->style.size, 20);
    const PartialTextFormat all = content.common(0, 4), middle = content.common(1, 3);
    EXPECT_FALSE(all.bold) << "mixed attributes are open";
    EXPECT_EQ(all.size, 20);
    EXPECT_EQ(middle.bold, true);
}

TEST(TextHtml, ReadsTextAsRecorded)
{
    struct Case {
        const char* name;
        std::u16string_view html, text;
        bool multiline = true, condense = false;
        int version = 8;
    };
    const Case kCases[] = {
        {"an end of a paragraph breaks the line", u"a<p>b</p>c", u"ab\rc"},
        {"but not in a field of one line", u"a<p>b</p>c", u"abc", false},
        {"unless the movie is old", u"a<p>b</p>c", u"ab\rc", false, false, 6},
        {"paragraphs do not nest", u"<p>a<p>b</p>c<p>d</p>e</p>", u"ab\rcd\re"},
        {"list items begin lines", u"a<li>b</li>c<br><li>d</li>", u"a\rb\rc\rd\r"},
        {"entities", u"&lt;&#65;&#x42;&amp;&quot;&apos;&nbsp;&none;&", u"<AB&\"'\u00A0&none;&"},
        {"comments go", u"a<!-- <b> -->c", u"ac"},
        {"a comment without end takes the rest", u"a<!--->b", u"a"},
        {"a cut tag ends the text", u"ab<font color='#fff", u"ab"},
        {"unknown tags go", u"<x>a</x><y/>b", u"ab"},
        {"white space is condensed across tags", u" a\r\n <b> b </b> ", u"a b ", true, true},
        {"up to version 7 its beginning stays", u"  a  b", u" a b", true, true, 7},
        {"and between tags it is not there", u"<b>a</b> <i> </i>b", u"ab", true, false, 7},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        HtmlOptions options;
        options.multiline = c.multiline;
        options.condenseWhite = c.condense;
        options.version = c.version;
        EXPECT_EQ(contentFromHtml(c.html, sized(12), options).text(), c.text);
    }
}

TEST(TextHtml, KeepsPicturesAtTheirPlaces)
{
    const std::u16string_view html = u"<p>ab<img src='x' id='i' width='10' align='right' hspace='0'>c</p>"
                                     u"<p>d<img src='y'/></p><img>";
    TextContent content = contentFromHtml(html, sized(12), {});
    EXPECT_EQ(content.text(), u"abc\rd\r");
    const auto places = [&content] {
        std::vector<std::pair<std::size_t, std::u16string>> places;
        for (const TextPicture& picture : content.pictures())
            places.emplace_back(picture.index, picture.source);
        return places;
    };
    using Places = decltype(places());
    EXPECT_EQ(places(), (Places{{2, u"x"}, {5, u"y"}})) << "one without a source is none";
    EXPECT_EQ(content.pictures()[0].width, 200);
    EXPECT_FALSE(content.pictures()[0].height);
    EXPECT_TRUE(content.pictures()[0].onRight);
    EXPECT_EQ(content.pictures()[1].horizontalSpace, 160);
    const std::u16string written = htmlFromContent(content);
    EXPECT_NE(written.find(u"ab<IMG SRC=\"x\" WIDTH=\"10\" ID=\"i\" ALIGN=\"right\" HSPACE=\"0\">c<"),
              std::u16string::npos);
    EXPECT_NE(written.find(u"d<IMG SRC=\"y\"></FONT></P>"), std::u16string::npos);
    // What is typed moves them, what is erased around them takes them along.
    content.replace(0, 0, u"12", sized(12));
    EXPECT_EQ(places(), (Places{{4, u"x"}, {7, u"y"}}));
    content.replace(3, 5, u"", sized(12));
    EXPECT_EQ(places(), (Places{{5, u"y"}}));
    HtmlOptions old;
    old.version = 6;
    EXPECT_TRUE(contentFromHtml(html, sized(12), old).pictures().empty());
}

std::u16string roundTrip(std::u16string_view html)
{
    std::u16string result = htmlFromContent(contentFromHtml(html, sized(12), {}));
    const std::u16string_view base =
        u"<FONT FACE=\"Font\" SIZE=\"12\" COLOR=\"#000000\" LETTERSPACING=\"0\" KERNING=\"0\">";
    for (std::size_t at = 0; (at = result.find(base, at)) != std::u16string::npos;)
        result.replace(at, base.size(), u"<F>");
    return result;
}

TEST(TextHtml, WritesTheFormThatScriptsKnow)
{
    struct Case {
        const char* name;
        std::u16string_view html, written;
    };
    const Case kCases[] = {
        {"inner tags in a fixed order", u"a<u>b<b>c</b>d</u>",
         u"<P ALIGN=\"LEFT\"><F>a<U>b</U><B><U>c</U></B><U>d</U></FONT></P>"},
        {"fonts nest and say what differs", u"a<font size='14'>b<font color='#ff'>c</font></font>d",
         u"<P ALIGN=\"LEFT\"><F>a<FONT SIZE=\"14\">b<FONT COLOR=\"#0000FF\">c</FONT></FONT>d</FONT></P>"},
        {"relative sizes stay within bounds", u"<font size='+200'>b</font>",
         u"<P ALIGN=\"LEFT\"><FONT FACE=\"Font\" SIZE=\"127\" COLOR=\"#000000\" LETTERSPACING=\"0\" "
         u"KERNING=\"0\">b</FONT></P>"},
        {"margins stand around paragraphs", u"<textformat leading='2'><p align='right'>a</p></textformat>",
         u"<TEXTFORMAT LEADING=\"2\"><P ALIGN=\"RIGHT\"><F>a</FONT></P></TEXTFORMAT>"},
        {"links", u"<a href='x?a&amp;b' target='t'>a</a>",
         u"<P ALIGN=\"LEFT\"><F><A HREF=\"x?a&amp;b\" TARGET=\"t\">a</A></FONT></P>"},
        {"only the innermost element can be closed", u"<b>a<i>b</b>c</i>d</b>e",
         u"<P ALIGN=\"LEFT\"><F><B>a</B><B><I>bc</I></B><B>d</B>e</FONT></P>"},
        {"no text is no paragraph", u"<b></b>", u""},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(roundTrip(c.html), c.written);
    }
}

TEST(StyleSheet, TellsGoodSheetsFromBadOnes)
{
    struct Case {
        std::u16string_view css;
        bool good;
        std::size_t rules = 0;
    };
    const Case kCases[] = {
        {u"a { a: 1; b: 2; }", true, 1},  {u",a,, ,, c,, { a: 1; }, b, ,,{ b: 2; }", true, 3},
        {u"a { a: 1 } b{b:2}", true, 2},  {u"a { a: 1; b: 2;; }", false},
        {u"a { a: 1; b: 2; ", true, 1},   {u"a { a: 1; b: 2  ", false},
        {u"a b { a: 1; }", false},        {u"a {}", true, 1},
        {u"/* x */ a /**/ { }", true, 1}, {u"a", false},
    };
    for (const Case& c : kCases) {
        const auto rules = StyleSheet::parse(c.css);
        ASSERT_EQ(rules.has_value(), c.good) << std::string(c.css.begin(), c.css.end());
        if (rules) {
            EXPECT_EQ(rules->size(), c.rules);
        }
    }
}

TEST(StyleSheet, ShapesElementsAndClasses)
{
    StyleSheet sheet;
    const auto rules = StyleSheet::parse(u"p { font-size: 20px; color: #102030 } .Big { font-weight: bold }"
                                         u" .gone { display: none }");
    ASSERT_TRUE(rules);
    for (const StyleSheet::Rule& rule : *rules) sheet.set(rule.selector, rule.properties);
    HtmlOptions options;
    options.styles = &sheet;
    const TextContent content =
        contentFromHtml(u"<p>a<span class='big'>b</span><span class='gone'>c</span></p>", sized(1), options);
    EXPECT_EQ(content.text(), u"ab\r");
    EXPECT_EQ(content.formatAt(0)->style.size, 400);
    EXPECT_EQ(content.formatAt(0)->style.color, (swf::Rgba{0x10, 0x20, 0x30, 255}));
    EXPECT_FALSE(content.formatAt(0)->style.bold);
    EXPECT_TRUE(content.formatAt(1)->style.bold);
}

} // namespace
} // namespace flash::stage
