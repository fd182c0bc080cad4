#include "flash/net/XmlScanner.h"

#include "base/TextCodes.h"

#include <gtest/gtest.h>

namespace flash::net
{
namespace
{

/// The tokens of a text, one to a word: a letter for the kind and what it holds.
std::string tokens(std::u16string_view text)
{
    constexpr std::string_view kLetters = "tc!?d<e/.*"; // as the kinds stand in their list
    XmlScanner scanner(text);
    std::string out;
    for (;;) {
        const XmlToken token = scanner.next();
        out += kLetters[static_cast<std::size_t>(token.kind)] + base::utf8FromUtf16(token.text);
        if (token.kind == XmlToken::Kind::Start || token.kind == XmlToken::Kind::Empty)
            for (const XmlAttribute& attribute : scanner.attributes())
                out += "," + base::utf8FromUtf16(attribute.name) + "=" + base::utf8FromUtf16(attribute.value);
        if (token.kind == XmlToken::Kind::Finish) return out;
        if (token.kind == XmlToken::Kind::Damage)
            return out + std::to_string(static_cast<int>(scanner.status()));
        out += '|';
    }
}

} // namespace

TEST(XmlScanner, TellsThePiecesOfADocument)
{
    EXPECT_EQ(tokens(u"<?xml v?><!DOCTYPE a [<!ENTITY b 'c'>]><a x = '1>' y=\"\"> t<b/><!-- <c> "
                     u"--><![CDATA[<&]]></a >"),
              "?xml v|d<!DOCTYPE a [<!ENTITY b 'c'>]>|<a,x=1>,y=|t t|eb|! <c> |c<&|/a|.");
    EXPECT_EQ(tokens(u""), ".");
    EXPECT_EQ(tokens(u"<a/b><c//></a/>"), "<a/b|ec/|/a|.") << "a slash belongs to the name";
    EXPECT_EQ(tokens(u"<a></a b>"), "<a|/a|.") << "what follows the name is passed over";
}

TEST(XmlScanner, TellsWhatIsWrong)
{
    struct Case {
        std::u16string_view text;
        XmlStatus status;
    };
    constexpr Case kCases[] = {
        {u"<![CDATA[a]]", XmlStatus::CdataNotEnded},
        {u"<?xml", XmlStatus::DeclarationNotEnded},
        {u"<!DOCTYPE a <b>", XmlStatus::DoctypeNotEnded},
        {u"<!--->", XmlStatus::CommentNotEnded},
        {u"<", XmlStatus::ElementMalformed},
        {u"<a", XmlStatus::ElementMalformed},
        {u"<a b>", XmlStatus::ElementMalformed},
        {u"<a b=c>", XmlStatus::ElementMalformed},
        {u"<a / >", XmlStatus::ElementMalformed},
        {u"</>", XmlStatus::ElementMalformed},
        {u"<a b='c>", XmlStatus::AttributeNotEnded},
    };
    for (const Case& c : kCases) {
        const std::string found = tokens(c.text);
        EXPECT_TRUE(found.ends_with("*" + std::to_string(static_cast<int>(c.status))))
            << base::utf8FromUtf16(c.text) << " gave " << found;
    }
}

TEST(XmlScanner, DecodesTheEntitiesThatAClassKnows)
{
    const auto numbers = [](std::u16string_view text) { return decodeXml(text, XmlEntities::Numbers); };
    EXPECT_EQ(numbers(u"&lt;&gt;&amp;&quot;&apos;"), u"<>&\"'");
    EXPECT_EQ(numbers(u"&#65;&#x1F600;&#xfF;"), u"A\U0001F600\u00FF");
    EXPECT_EQ(numbers(u"&#0;&#x110000;&#99999999;&#x;&#1g;&nbsp;& ;&amp"),
              u"&#0;&#x110000;&#99999999;&#x;&#1g;&nbsp;& ;&amp");
    EXPECT_EQ(decodeXml(u"&nbsp;&#65;&amp;lt;", XmlEntities::HardBlank), u"\u00A0&#65;&lt;");
}

} // namespace flash::net
