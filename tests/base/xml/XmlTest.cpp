#include "base/xml/Xml.h"

#include <gtest/gtest.h>

namespace base::xml
{
namespace
{

using namespace std::string_literals;

Result<Document> parse(const std::string& text)
{
    return Document::parse({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

std::string text(const Document& document)
{
    const auto bytes = document.bytes();
    return {bytes.begin(), bytes.end()};
}

TEST(XmlDocument, SurvivesASaveByteForByte)
{
    struct Case {
        const char* name;
        std::string source;
    };
    const Case kCases[] = {
        {"order, comments, white space", "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n<!-- \xEF -->\n"
                                         "<A z=\"1\"\tunknown=\"\xC6\" a=\"&lt;&amp;\">\n\t<B/>  text\n\n"
                                         "  <!-- <B/> --><?keep it?><![CDATA[<&]]>\n</A>\n<!-- end -->\n"},
        {"CR LF",
         "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n<A>\r\n  <B b=\"\xC6\"/>\r\n</A>\r\n"},
        {"UTF-8 with a mark", "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<A a=\"Ж\"/>\n"},
        {"a declaration without an encoding", "<?xml version=\"1.0\"?>\n<A a=\"Ж漢\"/>\n"},
        {"no declaration", "<A a=\"Ж\">\n</A>\n"},
        {"a mark and nothing else", "\xEF\xBB\xBF<A a=\"Ж\"/>\n"},
        {"whatever else an editor leaves",
         "<?xml version='1.0' encoding='UTF-8' ?>\n<A  a = 'x\"y'\n   b=\"&#1046;&apos;\" ><B></B><B  />"
         "<C>&gt;&#x21;<!-- <B a='1'> --></C ></A>\r\n\n"},
        {"another 8-bit encoding", "<?xml version=\"1.0\" encoding=\"koi8-r\"?>\n<A a=\"\xF6\"/>\n"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        auto document = parse(c.source);
        ASSERT_TRUE(document) << document.error().what;
        EXPECT_EQ(text(*document), c.source);
    }
}

TEST(XmlDocument, ReadsOldFilesThatDoNotTellTheirEncoding)
{
    for (const std::string head :
         {"", "<?xml version=\"1.0\"?>", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>"}) {
        SCOPED_TRACE(head);
        auto document = parse(head + "<A a=\"\xC6\"/>");
        ASSERT_TRUE(document) << document.error().what;
        EXPECT_EQ(document->root().attribute("a"), "Ж");
        // What is saved must be read again as the same text.
        auto again = parse(text(*document));
        ASSERT_TRUE(again) << again.error().what;
        EXPECT_EQ(again->root().attribute("a"), "Ж") << text(*document);
    }
    std::string wide = "\xFF\xFE"s;
    for (const char16_t unit : u"<A a=\"Ж\"/>"s)
        wide += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    auto document = parse(wide);
    ASSERT_TRUE(document) << document.error().what;
    EXPECT_EQ(parse(text(*document))->root().attribute("a"), "Ж");
}

TEST(XmlDocument, UpdatesInPlaceWithWhateverTheEncodingLacks)
{
    auto document =
        parse("<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n<A b=\"1\" a=\"2\"><T>old</T></A>\n");
    ASSERT_TRUE(document);
    Element root = document->root();
    Element child = *root.child("T");
    EXPECT_TRUE(root.setAttribute("b", "漢 \"<&>\" Ж\n"));
    EXPECT_TRUE(child.setText("<&amp; 漢\n]]>"));
    EXPECT_FALSE(root.setAttribute("a", "\x01")) << "the document could never be read again";
    EXPECT_FALSE(child.setText("\xFF"));
    EXPECT_EQ(text(*document).find("<?xml version=\"1.0\" encoding=\"windows-1251\"?>\n<A b=\""), 0U);
    auto again = parse(text(*document));
    ASSERT_TRUE(again) << again.error().what;
    EXPECT_EQ(again->root().attribute("b"), "漢 \"<&>\" Ж\n");
    EXPECT_EQ(again->root().attribute("a"), "2");
    EXPECT_EQ(again->root().child("T")->text(), "<&amp; 漢\n]]>");
}

TEST(XmlDocument, ChangesNoByteThatItNeedNot)
{
    const auto fill = [](Document& document) {
        for (Element element : document.root().children()) {
            if (element.name() == "R") {
                EXPECT_TRUE(element.setText("a & <b> 'c'"));
            }
        }
        EXPECT_TRUE(document.root().setAttribute("v", "it's \"new\""));
    };
    struct Case {
        const char *name, *before, *after;
    };
    constexpr Case kCases[] = {
        {"both marks, odd spacing", "<A  w = '&#65;'\n  v='1' ><R  ></R ></A>\n",
         "<A  w = '&#65;'\n  v='it&#39;s &quot;new&quot;' ><R  >a &amp; &lt;b&gt; 'c'</R ></A>\n"},
        {"empty elements open, others stay", "<A v=\"\"><R/><S/><R x='1' /></A>",
         "<A v=\"it's &quot;new&quot;\"><R>a &amp; &lt;b&gt; 'c'</R><S/><R x='1' >a &amp; &lt;b&gt; "
         "'c'</R></A>"},
        {"mixed line ends and tags within comments",
         "<!-- <A v='0'> -->\r\n<A\r\n\tv='0'>\n<R>old</R>\r\n</A>",
         "<!-- <A v='0'> -->\r\n<A\r\n\tv='it&#39;s &quot;new&quot;'>\n<R>a &amp; &lt;b&gt; 'c'</R>\r\n</A>"},
    };
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        auto document = parse(c.before);
        ASSERT_TRUE(document) << document.error().what;
        EXPECT_EQ(text(*document), c.before);
        fill(*document);
        EXPECT_EQ(text(*document), c.after);
        fill(*document);
        EXPECT_EQ(text(*document), c.after) << "a second save";
    }
    // What changes the structure is written whole.
    auto document = parse("<A  a='1'><R/></A>\n");
    document->root().setText("n");
    EXPECT_EQ(text(*document), "<A a=\"1\">n</A>\n");
}

TEST(XmlDocument, RefusesDamageAndBombsWithTheLine)
{
    for (const std::string& source : {""s, " "s, "<A>"s, "<A></B>"s, "<A a=1/>"s, "\0\0\0"s, "<A/><B/>"s})
        EXPECT_FALSE(parse(source)) << source;
    const auto damaged = parse("<A>\n\n</B>");
    ASSERT_FALSE(damaged);
    EXPECT_NE(damaged.error().what.find("line 3"), std::string::npos) << damaged.error().what;
    const auto bomb =
        parse("<!DOCTYPE A [<!ENTITY b \"bang\"><!ENTITY f SYSTEM \"/etc/passwd\">]><A>&b;&f;</A>");
    ASSERT_FALSE(bomb);
    EXPECT_EQ(bomb.error().code, ErrorCode::Denied);
    EXPECT_FALSE(parse(std::string(100000, '<')));
    std::string deep;
    for (int i = 0; i < 100000; ++i) deep += "<A>";
    EXPECT_FALSE(parse(deep));
}

} // namespace
} // namespace base::xml
